#include "base/ZTNotificationCenter.h"
#include "library/ZTDocument.h"
#include "lists/ZTList.h"
#include "model/ZTBook.h"
#include "store/ZTManagedObjectContext.h"
#include "support/ZTLibraryFixture.h"
#include "support/ZTTestMain.h"
#include "support/ZTTestSupport.h"

#include <QDir>
#include <QFile>
#include <QtTest>

#include <sqlite3.h>

namespace {
bool sql(const QString &package, const QString &statements)
{
    sqlite3 *db = nullptr;
    const QByteArray path = QFile::encodeName(package + QStringLiteral("/data.sql"));
    if (sqlite3_open(path.constData(), &db) != SQLITE_OK)
        return false;
    const bool ok = sqlite3_exec(db, statements.toUtf8().constData(), nullptr, nullptr, nullptr) == SQLITE_OK;
    sqlite3_close(db);
    return ok;
}

QList<qint64> priceLocaleKeys(ZTDocument &document, const QString &code)
{
    QList<qint64> keys;
    for (ZTManagedObject *row : document.managedObjectContext()->fetch(QStringLiteral("ZTPriceLocale"),
                                                                       QStringLiteral("code"), code))
        keys << row->primaryKey();
    return keys;
}
} // namespace

class TestDocument : public QObject {
    Q_OBJECT
private:
    QTemporaryDir m_settings;

private Q_SLOTS:
    void initTestCase() { ZTTestSupport::useTemporarySettings(m_settings); }

    void packageHasItsParts_data()
    {
        QTest::addColumn<int>("kind");
        QTest::addColumn<QString>("extension");
        QTest::newRow("book") << int(ZTMediaKind::Book) << QStringLiteral("ztbooklib");
        QTest::newRow("music") << int(ZTMediaKind::Album) << QStringLiteral("ztmusiclib");
        QTest::newRow("movie") << int(ZTMediaKind::Movie) << QStringLiteral("ztmovielib");
        QTest::newRow("comic") << int(ZTMediaKind::Comic) << QStringLiteral("ztcomiclib");
    }
    void packageHasItsParts()
    {
        QFETCH(int, kind);
        QFETCH(QString, extension);
        ZTLibraryFixture fixture{ZTMediaKind(kind)};
        QVERIFY(fixture.path().endsWith(extension));
        QVERIFY(QFileInfo(fixture.path() + QStringLiteral("/images")).isDir());
        QVERIFY(QFileInfo(fixture.path() + QStringLiteral("/data.sql")).isFile());
        QFile version(fixture.path() + QStringLiteral("/.version.xml"));
        QVERIFY(version.open(QIODevice::ReadOnly));
        QVERIFY(version.readAll().contains("<key>version</key>"));
        ZTMediaKind found;
        QVERIFY(ZTDocument::kindForPath(fixture.path() + QStringLiteral("/"), &found));
        QCOMPARE(int(found), kind);
        auto document = fixture.open();
        QVERIFY(document);
        QVERIFY(document->mainList());
        QVERIFY(document->mainList()->isLibrary());
        QVERIFY(document->itemLists().isEmpty());
        QVERIFY(document->openProblems().isEmpty());
        QVERIFY(!document->isDocumentEdited());
        // An existing folder is never overwritten.
        QVERIFY(!ZTDocument::createPackage(fixture.path(), ZTMediaKind(kind)));
    }

    void openingRefusesWhatIsNoLibrary()
    {
        QTemporaryDir dir;
        auto document = ZTDocument::create(ZTMediaKind::Book);
        QString error;
        QVERIFY(!document->readFromURL(dir.filePath(QStringLiteral("missing.ztbooklib")), &error));
        QVERIFY(!error.isEmpty());
        QFile plain(dir.filePath(QStringLiteral("file.ztbooklib")));
        QVERIFY(plain.open(QIODevice::WriteOnly));
        plain.close();
        QVERIFY(!document->readFromURL(plain.fileName(), &error));
        QVERIFY(QDir().mkpath(dir.filePath(QStringLiteral("empty.ztbooklib"))));
        QVERIFY(!document->readFromURL(dir.filePath(QStringLiteral("empty.ztbooklib")), &error));
        QVERIFY(error.contains(QStringLiteral("data.sql")));
    }

    void duplicateCurrenciesArePairedAndRepointed()
    {
        ZTLibraryFixture fixture;
        QString oid;
        {
            auto document = fixture.open();
            oid = document->addItemFromDictionary({{QStringLiteral("title"), QStringLiteral("x")}})->oid();
            QVERIFY(document->saveDocument());
        }
        // Two extra EUR rows under known keys; the item points at the larger.
        QVERIFY(sql(fixture.path(),
                    QStringLiteral(
                        "DELETE FROM ZZTPRICELOCALE WHERE ZCODE='EUR';"
                        "INSERT INTO ZZTPRICELOCALE (Z_PK, Z_ENT, Z_OPT, ZCODE) VALUES (905, 22, 1, 'EUR');"
                        "INSERT INTO ZZTPRICELOCALE (Z_PK, Z_ENT, Z_OPT, ZCODE) VALUES (909, 22, 1, 'EUR');"
                        "UPDATE ZZTITEM SET ZTOPRICELOCALE=909, ZTOPRICEPAIDLOCALE=909;")));
        {
            auto document = fixture.open();
            QCOMPARE(priceLocaleKeys(*document, QStringLiteral("EUR")), QList<qint64>{905});
            QCOMPARE(document->itemForOid(oid)->priceLocale(), QStringLiteral("EUR"));
            QCOMPARE(document->itemForOid(oid)->toOneForKey(QStringLiteral("toPriceLocale"))->primaryKey(),
                     905);
            QVERIFY(!document->isDocumentEdited());
        }
        // A smaller key found later wins, and items follow it.
        QVERIFY(
            sql(fixture.path(),
                QStringLiteral(
                    "INSERT INTO ZZTPRICELOCALE (Z_PK, Z_ENT, Z_OPT, ZCODE) VALUES (900, 22, 1, 'EUR');")));
        auto document = fixture.open();
        QCOMPARE(priceLocaleKeys(*document, QStringLiteral("EUR")), QList<qint64>{900});
        QCOMPARE(document->itemForOid(oid)->toOneForKey(QStringLiteral("toPriceLocale"))->primaryKey(), 900);
    }

    void threeEqualCurrenciesNeedTwoOpenings()
    {
        ZTLibraryFixture fixture;
        QVERIFY(
            sql(fixture.path(),
                QStringLiteral(
                    "DELETE FROM ZZTPRICELOCALE WHERE ZCODE='CHF';"
                    "INSERT INTO ZZTPRICELOCALE (Z_PK, Z_ENT, Z_OPT, ZCODE) VALUES (801, 22, 1, 'CHF');"
                    "INSERT INTO ZZTPRICELOCALE (Z_PK, Z_ENT, Z_OPT, ZCODE) VALUES (802, 22, 1, 'CHF');"
                    "INSERT INTO ZZTPRICELOCALE (Z_PK, Z_ENT, Z_OPT, ZCODE) VALUES (803, 22, 1, 'CHF');")));
        QCOMPARE(priceLocaleKeys(*fixture.open(), QStringLiteral("CHF")).size(), 2);
        QCOMPARE(priceLocaleKeys(*fixture.open(), QStringLiteral("CHF")), QList<qint64>{801});
    }

    void aLibraryWithoutHongKongDollarsGainsThem()
    {
        ZTLibraryFixture fixture;
        QVERIFY(sql(fixture.path(), QStringLiteral("DELETE FROM ZZTPRICELOCALE WHERE ZCODE='HKD';")));
        auto document = fixture.open();
        QCOMPARE(priceLocaleKeys(*document, QStringLiteral("HKD")).size(), 1);
        QVERIFY(!document->isDocumentEdited());
        QVERIFY(!document->managedObjectContext()->hasChanges());
    }

    void unusedNamesGoAtTheNextSaveNotBefore()
    {
        ZTLibraryFixture fixture;
        auto document = fixture.open();
        ZTItem *item = document->addItemFromDictionary(
            {{QStringLiteral("keywords"), QStringList{QStringLiteral("old")}},
             {QStringLiteral("authors"), QStringList{QStringLiteral("Ann")}}});
        QVERIFY(document->saveDocument());
        const auto &keywords = document->managedObjectContext()->mutableOidTable(QStringLiteral("ZTKeyword"));
        QCOMPARE(keywords.size(), 1);
        item->takeAttributesFromDictionary({{QStringLiteral("keywords"), QStringList{QStringLiteral("new")}},
                                            {QStringLiteral("authors"), QStringList{QStringLiteral("Bo")}}});
        QCOMPARE(keywords.size(), 2);
        QVERIFY(document->saveDocument());
        QCOMPARE(keywords.size(), 1);
        auto reopened = fixture.open();
        auto &tables = reopened->managedObjectContext()->oidObjectDictionary();
        QCOMPARE(tables.value(QStringLiteral("ZTKeyword")).size(), 1);
        QCOMPARE(tables.value(QStringLiteral("ZTAuthor")).size(), 1);
        QCOMPARE(tables.value(QStringLiteral("ZTAuthorRole")).size(), 1);
        // A name used again after pruning is found afresh.
        ZTItem *again = reopened->addItemFromDictionary(
            {{QStringLiteral("keywords"), QStringList{QStringLiteral("old")}}});
        QCOMPARE(again->valueForKey(QStringLiteral("keywords")).toStringList(),
                 QStringList{QStringLiteral("old")});
    }

    void changesAreRecordedAndSavesAnnounced()
    {
        ZTLibraryFixture fixture;
        auto document = fixture.open();
        int saved = 0;
        qint64 node = 0;
        ZTObservation observer(ZTDocumentNotification::savedLibrary, document.get(),
                               [&](const ZTNotification &n) {
                                   ++saved;
                                   node = n.userInfo.value(QStringLiteral("nodeID")).toLongLong();
                               });
        ZTItem *item = document->addItemFromDictionary({});
        QCOMPARE(document->oidChangeDictionary().value(QStringLiteral("oidsInserted")).toStringList(),
                 QStringList{item->oid()});
        document->updateChangeCount(ZTDocument::ChangeType::Done);
        QVERIFY(document->isDocumentEdited());
        QVERIFY(document->saveDocument());
        QVERIFY(!document->isDocumentEdited());
        QCOMPARE(saved, 1);
        QCOMPARE(node, document->nodeID());
        QVERIFY(
            document->oidChangeDictionary().value(QStringLiteral("oidsInserted")).toStringList().isEmpty());
    }

    void removingItemsTakesThemFromListsAndStore()
    {
        ZTLibraryFixture fixture;
        QString keep, gone;
        {
            auto document = fixture.open();
            ZTItem *a = document->addItemFromDictionary({{QStringLiteral("title"), QStringLiteral("a")}});
            ZTItem *b = document->addItemFromDictionary({{QStringLiteral("title"), QStringLiteral("b")}});
            b->replaceCover({}, zt_pngBytes(4, 4), {}, QStringLiteral("PNG"), true);
            b->setLentToName(QStringLiteral("Bea"));
            keep = a->oid();
            gone = b->oid();
            auto *list = ZTList::createInManagedObjectContext(document->managedObjectContext(), 0);
            list->setItemOids({gone, keep});
            document->mutableItemLists() << list;
            QVERIFY(document->saveDocument());
            document->removeItemsFromLibrary({gone});
            QVERIFY(document->saveDocument());
            QVERIFY(QDir(fixture.path() + QStringLiteral("/images")).entryList(QDir::Files).isEmpty());
        }
        auto document = fixture.open();
        QCOMPARE(document->mainList()->itemOids(), QStringList{keep});
        QCOMPARE(document->itemLists().first()->itemOids(), QStringList{keep});
        QVERIFY(!document->itemForOid(gone));
        QVERIFY(document->managedObjectContext()->fetch(QStringLiteral("ZTLendingContext")).isEmpty());
        QVERIFY(document->managedObjectContext()->fetch(QStringLiteral("ZTImage")).isEmpty());
    }

    void aMissingPictureFileReadsAsNoPicture()
    {
        ZTLibraryFixture fixture;
        QString oid;
        {
            auto document = fixture.open();
            ZTItem *item = document->addItemFromDictionary({});
            item->replaceCover({}, zt_pngBytes(4, 4), {}, QStringLiteral("PNG"), true);
            oid = item->oid();
            QVERIFY(document->saveDocument());
        }
        for (const QString &name : QDir(fixture.path() + QStringLiteral("/images")).entryList(QDir::Files))
            QVERIFY(QFile::remove(fixture.path() + QStringLiteral("/images/") + name));
        auto document = fixture.open();
        ZTItem *item = document->itemForOid(oid);
        QVERIFY(item->hasCoverImage());
        QVERIFY(item->largestImageAvailable().isEmpty());
        QVERIFY(item->image().isNull());
    }

    void aMissingMainListIsMadeAndSaid()
    {
        ZTLibraryFixture fixture;
        {
            auto document = fixture.open();
            document->addItemFromDictionary({{QStringLiteral("title"), QStringLiteral("orphan")}});
            QVERIFY(document->saveDocument());
        }
        QVERIFY(sql(fixture.path(), QStringLiteral("DELETE FROM ZZTLIST")));
        auto document = fixture.open();
        QCOMPARE(document->mainList()->count(), 1);
        QVERIFY(!document->openProblems().isEmpty());
    }
};

ZT_TEST_MAIN(TestDocument)
#include "tst_document.moc"
