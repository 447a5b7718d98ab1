#pragma once

// A real library package in a temporary folder, opened, with the view
// pipeline a window would hold: what every sheet test drives. Header-only.

#include "library/ZTDocument.h"
#include "library/ZTViewPipeline.h"
#include "lists/ZTList.h"
#include "model/ZTItem.h"
#include "support/ZTTestSupport.h"

#include <QTemporaryDir>
#include <QtTest>

#include <memory>

class ZTSheetFixture {
public:
    explicit ZTSheetFixture(ZTMediaKind kind = ZTMediaKind::Book)
    {
        ZTTestSupport::useTemporarySettings(m_dir);
        const QString path = m_dir.filePath(QStringLiteral("Sheets.") + ZTMediaKinds::packageExtension(kind));
        QString error;
        if (!ZTDocument::createPackage(path, kind, &error))
            qFatal("cannot create a library: %s", qPrintable(error));
        m_document = ZTDocument::create(kind);
        if (!m_document->readFromURL(path, &error))
            qFatal("cannot open the library: %s", qPrintable(error));
        m_document->documentDidOpen();
        m_pipeline = std::make_unique<ZTViewPipeline>(*m_document);
    }

    ZTDocument &document() { return *m_document; }
    ZTViewPipeline &pipeline() { return *m_pipeline; }
    const QTemporaryDir &dir() const { return m_dir; }

    // Adds items and brings the view up to date, as the window does after adding.
    ZTItem *add(const QVariantMap &dictionary)
    {
        ZTItem *item = m_document->addItemFromDictionary(dictionary);
        m_pipeline->selectListRow(0);
        m_pipeline->updateMainCaches();
        return item;
    }
    ZTItem *addTitled(const QString &title, QVariantMap more = {})
    {
        more.insert(QStringLiteral("title"), title);
        return add(more);
    }
    int itemCount() const { return int(m_document->allItems().size()); }

private:
    QTemporaryDir m_dir;
    std::unique_ptr<ZTDocument> m_document;
    std::unique_ptr<ZTViewPipeline> m_pipeline;
};
