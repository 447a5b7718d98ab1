#pragma once

// A real library package in a temporary folder, opened, for the tests of the
// view pipeline and the item operations. Header-only: each test program
// includes it.

#include "library/ZTDocument.h"
#include "lists/ZTList.h"
#include "lists/ZTSmartList.h"
#include "model/ZTItem.h"
#include "store/ZTManagedObjectContext.h"
#include "support/ZTTestSupport.h"

#include <QTemporaryDir>
#include <QtTest>

#include <memory>

class ZTLibraryFixture {
public:
    explicit ZTLibraryFixture(ZTMediaKind kind = ZTMediaKind::Book)
    {
        ZTTestSupport::useTemporarySettings(m_dir);
        m_path = m_dir.filePath(QStringLiteral("Test.") + ZTMediaKinds::packageExtension(kind));
        QString error;
        if (!ZTDocument::createPackage(m_path, kind, &error))
            qFatal("cannot create a library: %s", qPrintable(error));
        reopen();
    }

    void reopen()
    {
        m_document = ZTDocument::create(kindOf(m_path));
        QString error;
        if (!m_document->readFromURL(m_path, &error))
            qFatal("cannot open the library: %s", qPrintable(error));
        m_document->documentDidOpen();
    }

    static ZTMediaKind kindOf(const QString &path)
    {
        ZTMediaKind kind = ZTMediaKind::Book;
        ZTDocument::kindForPath(path, &kind);
        return kind;
    }

    ZTDocument &document() { return *m_document; }
    QString path() const { return m_path; }
    const QTemporaryDir &dir() const { return m_dir; }

    // Adds through the document's one door; the new item stands first in the main list.
    ZTItem *add(const QVariantMap &dictionary) { return m_document->addItemFromDictionary(dictionary); }
    QString addTitled(const QString &title, QVariantMap more = {})
    {
        more.insert(QStringLiteral("title"), title);
        ZTItem *item = add(more);
        return item ? item->oid() : QString();
    }

    ZTList *addList(const QString &name, const QStringList &oids)
    {
        auto &lists = m_document->mutableItemLists();
        ZTList *list =
            ZTList::createInManagedObjectContext(m_document->managedObjectContext(), int(lists.size()));
        list->setName(name);
        list->setItemOids(oids);
        lists.append(list);
        return list;
    }

    ZTSmartList *addSmartList(const QString &name, const QStringList &oids)
    {
        auto &lists = m_document->mutableItemLists();
        ZTSmartList *list =
            ZTSmartList::createInManagedObjectContext(m_document->managedObjectContext(), int(lists.size()));
        list->setName(name);
        list->setItemOids(oids);
        lists.append(list);
        return list;
    }

    QString titleOf(const QString &oid) const
    {
        const ZTItem *item = m_document->itemForOid(oid);
        return item ? item->title() : QStringLiteral("<gone>");
    }

    QStringList titlesOf(const QStringList &oids) const
    {
        QStringList titles;
        for (const QString &oid : oids)
            titles << titleOf(oid);
        return titles;
    }

private:
    QTemporaryDir m_dir;
    QString m_path;
    std::unique_ptr<ZTDocument> m_document;
};
