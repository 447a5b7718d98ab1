#pragma once

#include "library/ZTDocument.h"
#include "lists/ZTListClock.h"
#include "model/ZTItem.h"

#include <QTemporaryDir>
#include <QTest>

#include <memory>

// A real library package in a temporary folder, opened as the program opens one.
struct ListsTestLibrary {
    QTemporaryDir dir;
    QString path;
    std::unique_ptr<ZTDocument> document;

    explicit ListsTestLibrary(ZTMediaKind kind = ZTMediaKind::Book,
                              const QString &name = QStringLiteral("lib"))
    {
        path = dir.filePath(name + QLatin1Char('.') + ZTMediaKinds::packageExtension(kind));
        QString error;
        if (!ZTDocument::createPackage(path, kind, &error))
            qFatal("cannot create a library: %s", qPrintable(error));
        reopen();
    }

    void reopen()
    {
        document = ZTDocument::create(ZTDocument::kindForPath(path, &m_kind) ? m_kind : ZTMediaKind::Book);
        QString error;
        if (!document->readFromURL(path, &error))
            qFatal("cannot open the library: %s", qPrintable(error));
        document->documentDidOpen();
    }

    bool saveAndReopen()
    {
        QString error;
        if (!document->saveDocument(&error)) {
            qWarning("save failed: %s", qPrintable(error));
            return false;
        }
        reopen();
        return true;
    }

    ZTItem *add(const QVariantMap &dictionary) { return document->addItemFromDictionary(dictionary); }

private:
    ZTMediaKind m_kind = ZTMediaKind::Book;
};

// Sets the smart lists' clock for the life of the object.
struct FixedListClock {
    explicit FixedListClock(const QDateTime &now) { set(now); }
    ~FixedListClock() { ZTListClock::setSource({}); }
    void set(const QDateTime &now)
    {
        m_now = now;
        ZTListClock::setSource([this] { return m_now; });
    }
    QDateTime m_now;
};

inline QDateTime localDay(int year, int month, int day, int hour = 12, int minute = 0)
{
    return QDateTime(QDate(year, month, day), QTime(hour, minute));
}
