#include "library/ZTLibraryModel.h"
#include "lists/ZTList.h"
#include "model/ZTItemResources.h"
#include "store/ZTEntity.h"
#include "store/ZTImage.h"
#include "store/ZTManagedObjectContext.h"
#include "store/ZTOid.h"
#include "store/ZTPropertyList.h"
#include "support/ZTLibraryFixture.h"
#include "support/ZTTestMain.h"
#include "support/ZTTestSupport.h"

#include <QDir>
#include <QFile>
#include <QtTest>

#include <thread>

#include <sqlite3.h>

namespace {
// Runs SQL on the store through a second connection, as another process would.
bool sqlOn(const QString &path, const char *sql)
{
    sqlite3 *db = nullptr;
    if (sqlite3_open(QFile::encodeName(path).constData(), &db) != SQLITE_OK)
        return false;
    const bool ok = sqlite3_exec(db, sql, nullptr, nullptr, nullptr) == SQLITE_OK;
    sqlite3_close(db);
    return ok;
}

qint64 countRows(const QString &path, const char *sql)
{
    sqlite3 *db = nullptr;
    sqlite3_open(QFile::encodeName(path).constData(), &db);
    sqlite3_stmt *stmt = nullptr;
    qint64 n = -1;
    if (sqlite3_prepare_v2(db, sql, -1, &stmt, nullptr) == SQLITE_OK && sqlite3_step(stmt) == SQLITE_ROW)
        n = sqlite3_column_int64(stmt, 0);
    sqlite3_finalize(stmt);
    sqlite3_close(db);
    return n;
}
} // namespace

class TestObjectStore : public QObject {
    Q_OBJECT
private:
    std::unique_ptr<ZTManagedObjectContext> openContext(const ZTLibraryFixture &fixture)
    {
        auto context = std::make_unique<ZTManagedObjectContext>(ZTLibraryModel::objectModel());
        QString error;
        if (!context->open(fixture.path(), &error))
            qWarning() << error;
        return context;
    }

private Q_SLOTS:
    void oidsAreDistinctVersionFourUuids()
    {
        // Made on two threads at once: each thread draws from its own generator.
        QSet<QString> seen;
        QStringList other;
        std::thread worker([&other] {
            for (int i = 0; i < 5000; ++i)
                other << ZTOid::uuid();
        });
        for (int i = 0; i < 5000; ++i)
            seen.insert(ZTOid::uuid());
        worker.join();
        for (const QString &oid : std::as_const(other))
            seen.insert(oid);
        QCOMPARE(seen.size(), 10000);
        const QRegularExpression canonical(
            QStringLiteral("^[0-9a-f]{8}-[0-9a-f]{4}-4[0-9a-f]{3}-[89ab][0-9a-f]{3}-[0-9a-f]{12}$"));
        int hexDigitsSeen = 0;
        for (const QString &oid : std::as_const(seen)) {
            QVERIFY2(canonical.match(oid).hasMatch(), qPrintable(oid));
            const QUuid parsed(oid);
            QCOMPARE(parsed.version(), QUuid::Random);
            QCOMPARE(parsed.variant(), QUuid::DCE);
            QCOMPARE(parsed.toString(QUuid::WithoutBraces), oid);
            for (QChar c : oid)
                hexDigitsSeen |= 1 << QStringLiteral("0123456789abcdef-").indexOf(c);
        }
        // Every digit turns up somewhere: the generator is not stuck on a few.
        QCOMPARE(hexDigitsSeen, (1 << 17) - 1);
    }

    void templateHoldsMainListLocalesAndCurrencies()
    {
        ZTLibraryFixture fixture;
        QVERIFY(fixture.isValid());
        auto context = openContext(fixture);
        const auto mains = context->fetch(QStringLiteral("ZTList"), QStringLiteral("libraryFlag"), true);
        QCOMPARE(mains.size(), 1);
        QVERIFY(!context->fetch(QStringLiteral("ZTLocale"), QStringLiteral("code"), QStringLiteral("US"))
                     .isEmpty());
        for (const QString &code : ZTItemResources::priceLocales())
            QVERIFY2(!context->fetch(QStringLiteral("ZTPriceLocale"), QStringLiteral("code"), code).isEmpty(),
                     qPrintable(code));
        for (const QString &code : ZTItemResources::locales())
            QVERIFY2(!context->fetch(QStringLiteral("ZTLocale"), QStringLiteral("code"), code).isEmpty(),
                     qPrintable(code));
        QVERIFY(ZTItemResources::priceLocales().contains(QStringLiteral("HKD")));
    }

    void valuesOfEveryTypeSurviveReopening()
    {
        ZTLibraryFixture fixture;
        const QDateTime when = QDateTime(QDate(1999, 12, 31), QTime(23, 59, 58), Qt::UTC);
        QString oid;
        {
            auto context = openContext(fixture);
            ZTManagedObject *book = context->insertNewObject(QStringLiteral("ZTBook"));
            QVERIFY(book->isTemporaryID());
            QVERIFY(book->objectIDURI().contains(QStringLiteral("/ZTBook/t")));
            book->setPrimitiveValueForKey(QStringLiteral("oid-1"), QStringLiteral("oid"));
            book->setPrimitiveValueForKey(QStringLiteral("Ünïcødé ✓ title"), QStringLiteral("title"));
            book->setPrimitiveValueForKey(412, QStringLiteral("pages"));
            book->setPrimitiveValueForKey(19.99, QStringLiteral("price"));
            book->setPrimitiveValueForKey(true, QStringLiteral("signedFlag"));
            book->setPrimitiveValueForKey(when, QStringLiteral("datePublished"));
            ZTManagedObject *smart = context->insertNewObject(QStringLiteral("ZTSmartList"));
            smart->setPrimitiveValueForKey(QByteArray("\x00\x01\xff", 3), QStringLiteral("qualifierData"));
            ZTManagedObject *image = context->insertNewObject(QStringLiteral("ZTImage"));
            book->setToOneForKey(QStringLiteral("toCoverImage"), image);
            QVERIFY(context->save());
            QVERIFY(!book->isTemporaryID());
            QVERIFY(book->objectIDURI().contains(QStringLiteral("/ZTBook/p")));
            QVERIFY(context->insertedObjects().isEmpty());
            QVERIFY(!context->hasChanges());
        }
        auto context = openContext(fixture);
        const auto books = context->fetch(QStringLiteral("ZTBook"));
        QCOMPARE(books.size(), 1);
        ZTManagedObject *book = books.first();
        QCOMPARE(book->primitiveValueForKey(QStringLiteral("title")).toString(),
                 QStringLiteral("Ünïcødé ✓ title"));
        QCOMPARE(book->primitiveValueForKey(QStringLiteral("pages")).toLongLong(), 412);
        QCOMPARE(book->primitiveValueForKey(QStringLiteral("price")).toDouble(), 19.99);
        QCOMPARE(book->primitiveValueForKey(QStringLiteral("signedFlag")).toBool(), true);
        QCOMPARE(book->primitiveValueForKey(QStringLiteral("datePublished")).toDateTime(), when);
        const auto smartLists = context->fetch(QStringLiteral("ZTSmartList"));
        QCOMPARE(smartLists.size(), 1);
        QCOMPARE(smartLists.first()->primitiveValueForKey(QStringLiteral("qualifierData")).toByteArray(),
                 QByteArray("\x00\x01\xff", 3));
        QVERIFY(!book->primitiveValueForKey(QStringLiteral("genre")).isValid());
        QVERIFY(book->toOneForKey(QStringLiteral("toCoverImage")) != nullptr);
        QCOMPARE(book->toOneForKey(QStringLiteral("toCoverImage"))->entityName(), QStringLiteral("ZTImage"));
        QCOMPARE(
            countRows(fixture.path() + QStringLiteral("/data.sql"), "SELECT COUNT(*) AS CNT FROM ZZTITEM"),
            1);
    }

    // Repeated short texts come back as one shared string; texts that keep
    // differing (past the point where sharing stops paying) and long texts come
    // back whole all the same.
    void repeatedTextsAreSharedAfterReopening()
    {
        ZTLibraryFixture fixture;
        constexpr int count = 5000;
        const QString longText = QString(100, QLatin1Char('x')) + QStringLiteral("ü");
        {
            auto context = openContext(fixture);
            for (int i = 0; i < count; ++i) {
                ZTManagedObject *book = context->insertNewObject(QStringLiteral("ZTBook"));
                book->setPrimitiveValueForKey(QStringLiteral("oid-%1").arg(i), QStringLiteral("oid"));
                book->setPrimitiveValueForKey(QStringLiteral("Title %1").arg(i), QStringLiteral("title"));
                book->setPrimitiveValueForKey(i % 2 ? QStringLiteral("Fantasy") : QStringLiteral("Crime"),
                                              QStringLiteral("genre"));
                book->setPrimitiveValueForKey(longText, QStringLiteral("notes"));
            }
            QVERIFY(context->save());
        }
        auto context = openContext(fixture);
        QHash<QString, ZTManagedObject *> byOid;
        for (ZTManagedObject *book : context->fetch(QStringLiteral("ZTBook")))
            byOid.insert(book->primitiveValueForKey(QStringLiteral("oid")).toString(), book);
        QCOMPARE(byOid.size(), count);
        QSet<const QChar *> genres;
        for (int i = 0; i < count; ++i) {
            const ZTManagedObject *book = byOid.value(QStringLiteral("oid-%1").arg(i));
            QVERIFY(book);
            QCOMPARE(book->primitiveValueForKey(QStringLiteral("title")).toString(),
                     QStringLiteral("Title %1").arg(i));
            const QString genre = book->primitiveValueForKey(QStringLiteral("genre")).toString();
            QCOMPARE(genre, i % 2 ? QStringLiteral("Fantasy") : QStringLiteral("Crime"));
            genres.insert(genre.constData());
            QCOMPARE(book->primitiveValueForKey(QStringLiteral("notes")).toString(), longText);
        }
        QCOMPARE(genres.size(), 2);
    }

    void valuesAreNormalisedToTheAttributeType()
    {
        ZTLibraryFixture fixture;
        auto context = openContext(fixture);
        ZTManagedObject *book = context->insertNewObject(QStringLiteral("ZTBook"));
        book->setPrimitiveValueForKey(QStringLiteral(" 250 "), QStringLiteral("pages"));
        QCOMPARE(book->primitiveValueForKey(QStringLiteral("pages")).typeId(), int(QMetaType::LongLong));
        book->setPrimitiveValueForKey(QStringLiteral("many"), QStringLiteral("pages"));
        QVERIFY(!book->primitiveValueForKey(QStringLiteral("pages")).isValid());
        book->setPrimitiveValueForKey(QStringLiteral("yes"), QStringLiteral("ownedFlag"));
        QCOMPARE(book->primitiveValueForKey(QStringLiteral("ownedFlag")), QVariant(true));
        book->setPrimitiveValueForKey(QStringLiteral("2001-02-15"), QStringLiteral("dateUsed"));
        QCOMPARE(book->primitiveValueForKey(QStringLiteral("dateUsed")).toDateTime().toLocalTime().date(),
                 QDate(2001, 2, 15));
        book->setPrimitiveValueForKey(QStringLiteral("not a date"), QStringLiteral("dateUsed"));
        QVERIFY(!book->primitiveValueForKey(QStringLiteral("dateUsed")).isValid());
        // An unknown key is ignored and reads as nothing.
        book->setPrimitiveValueForKey(QStringLiteral("x"), QStringLiteral("noSuchKey"));
        QVERIFY(!book->primitiveValueForKey(QStringLiteral("noSuchKey")).isValid());
    }

    void saveWritesOnlyChangedRows()
    {
        ZTLibraryFixture fixture;
        {
            auto context = openContext(fixture);
            for (int i = 0; i < 3; ++i)
                context->insertNewObject(QStringLiteral("ZTBook"))
                    ->setPrimitiveValueForKey(QStringLiteral("t%1").arg(i), QStringLiteral("title"));
            QVERIFY(context->save());
        }
        const QString data = fixture.path() + QStringLiteral("/data.sql");
        auto context = openContext(fixture);
        QVERIFY(!context->hasChanges());
        ZTManagedObject *second =
            context->fetch(QStringLiteral("ZTBook"), QStringLiteral("title"), QStringLiteral("t1")).first();
        second->setPrimitiveValueForKey(QStringLiteral("changed"), QStringLiteral("title"));
        QCOMPARE(context->updatedObjects().size(), 1);
        QVERIFY(context->save());
        QCOMPARE(countRows(data, "SELECT COUNT(*) FROM ZZTITEM WHERE Z_OPT > 1"), 1);
        QCOMPARE(countRows(data, "SELECT COUNT(*) FROM ZZTITEM WHERE ZTITLE = 'changed'"), 1);
    }

    void deletingRemovesRowsAndFetchSkipsThem()
    {
        ZTLibraryFixture fixture;
        auto context = openContext(fixture);
        ZTManagedObject *a = context->insertNewObject(QStringLiteral("ZTAlbum"));
        ZTManagedObject *b = context->insertNewObject(QStringLiteral("ZTAlbum"));
        QVERIFY(context->save());
        context->deleteObject(a);
        QCOMPARE(context->fetch(QStringLiteral("ZTItem")).size(), 1);
        QCOMPARE(context->deletedObjects().size(), 1);
        // A row inserted and deleted before any commit never reaches the store.
        ZTManagedObject *c = context->insertNewObject(QStringLiteral("ZTAlbum"));
        context->deleteObject(c);
        QVERIFY(context->save());
        QCOMPARE(countRows(fixture.path() + QStringLiteral("/data.sql"), "SELECT COUNT(*) FROM ZZTITEM"), 1);
        QVERIFY(a->isDeleted());
        QVERIFY(!b->isDeleted());
    }

    void rowsByTextAnswerAsFetchDoes()
    {
        ZTLibraryFixture fixture;
        auto context = openContext(fixture);
        const QString entity = QStringLiteral("ZTPriceLocale");
        const QString code = QStringLiteral("code");
        auto first = [&](const QString &text) {
            const QList<ZTManagedObject *> rows = context->fetch(entity, code, text);
            return rows.isEmpty() ? nullptr : rows.first();
        };
        ZTManagedObject *euro = context->firstObjectWithText(entity, code, QStringLiteral("EUR"));
        QVERIFY(euro);
        QCOMPARE(euro, first(QStringLiteral("EUR")));
        QVERIFY(!context->firstObjectWithText(entity, code, QStringLiteral("XXX")));
        // A later row with the same code does not come first.
        ZTManagedObject *second = context->insertNewObject(entity);
        second->setPrimitiveValueForKey(QStringLiteral("EUR"), code);
        QCOMPARE(context->firstObjectWithText(entity, code, QStringLiteral("EUR")), euro);
        // The remembered row changes its code, or goes: the next row answers.
        euro->setPrimitiveValueForKey(QStringLiteral("EUX"), code);
        QCOMPARE(context->firstObjectWithText(entity, code, QStringLiteral("EUR")), second);
        QCOMPARE(context->firstObjectWithText(entity, code, QStringLiteral("EUX")), euro);
        context->deleteObject(euro);
        QCOMPARE(context->firstObjectWithText(entity, code, QStringLiteral("EUX")),
                 first(QStringLiteral("EUX")));
        QVERIFY(!context->firstObjectWithText(entity, code, QStringLiteral("EUX")));
        // A code that was missing is found once a row holds it.
        ZTManagedObject *made = context->insertNewObject(entity);
        made->setPrimitiveValueForKey(QStringLiteral("XXX"), code);
        QCOMPARE(context->firstObjectWithText(entity, code, QStringLiteral("XXX")), made);
    }

    void picturesAreStagedUntilTheCommit()
    {
        ZTLibraryFixture fixture;
        auto context = openContext(fixture);
        const QByteArray png = zt_pngBytes(4, 3);
        context->insertImageWithFilename(QStringLiteral("a.png"), png);
        const QString staged = QDir(context->stagingFolderPath()).filePath(QStringLiteral("a.png"));
        const QString stored = QDir(context->imageFolderPath()).filePath(QStringLiteral("a.png"));
        QVERIFY(QFile::exists(staged));
        QVERIFY(!QFile::exists(stored));
        QVERIFY(context->save());
        QVERIFY(!QFile::exists(staged));
        QVERIFY(QFile::exists(stored));
        // A deleted image row takes its file along at the next commit.
        auto *image = static_cast<ZTImage *>(context->insertNewObject(QStringLiteral("ZTImage")));
        image->setPrimitiveValueForKey(QStringLiteral("a.png"), QStringLiteral("filename"));
        QVERIFY(context->save());
        QCOMPARE(image->imageData(), png);
        context->deleteObject(image);
        QVERIFY(context->save());
        QVERIFY(!QFile::exists(stored));
    }

    void deletingAnUncommittedPictureRemovesTheStagedFile()
    {
        ZTLibraryFixture fixture;
        auto context = openContext(fixture);
        context->insertImageWithFilename(QStringLiteral("b.png"), zt_pngBytes(2, 2));
        context->deleteImageWithFilename(QStringLiteral("b.png"));
        QVERIFY(context->save());
        QVERIFY(!QFile::exists(QDir(context->stagingFolderPath()).filePath(QStringLiteral("b.png"))));
        QVERIFY(!QFile::exists(QDir(context->imageFolderPath()).filePath(QStringLiteral("b.png"))));
    }

    void aPackageWithoutImagesKeepsPicturesStaged()
    {
        ZTLibraryFixture fixture;
        QVERIFY(QDir(fixture.path() + QStringLiteral("/images")).removeRecursively());
        auto context = openContext(fixture);
        context->insertImageWithFilename(QStringLiteral("c.png"), zt_pngBytes(2, 2));
        QVERIFY(context->save());
        QVERIFY(QFile::exists(QDir(context->stagingFolderPath()).filePath(QStringLiteral("c.png"))));
        QVERIFY(QDir().mkpath(fixture.path() + QStringLiteral("/images")));
        QVERIFY(context->save());
        QVERIFY(QFile::exists(QDir(context->imageFolderPath()).filePath(QStringLiteral("c.png"))));
    }

    void aFailedCommitMovesNoFileAndKeepsItsChanges()
    {
        ZTLibraryFixture fixture;
        auto context = openContext(fixture);
        context->insertNewObject(QStringLiteral("ZTBook"))
            ->setPrimitiveValueForKey(QStringLiteral("x"), QStringLiteral("title"));
        context->insertImageWithFilename(QStringLiteral("d.png"), zt_pngBytes(2, 2));
        context->deleteImageWithFilename(QStringLiteral("old.png"));
        // Another program takes the table away: the row commit fails.
        QVERIFY(sqlOn(fixture.path() + QStringLiteral("/data.sql"), "DROP TABLE ZZTITEM"));
        QString error;
        QVERIFY(!context->save(&error));
        QVERIFY(!error.isEmpty());
        QVERIFY(QFile::exists(QDir(context->stagingFolderPath()).filePath(QStringLiteral("d.png"))));
        QVERIFY(context->imagesDeleted().contains(QStringLiteral("old.png")));
        QCOMPARE(context->insertedObjects().size(), 1);
        QVERIFY(context->insertedObjects().first()->isTemporaryID());
    }

    void aFileThatIsNotSQLiteIsReported()
    {
        ZTLibraryFixture fixture;
        QFile data(fixture.path() + QStringLiteral("/data.sql"));
        QVERIFY(data.open(QIODevice::WriteOnly | QIODevice::Truncate));
        data.write("this is not a database at all, just text\n");
        data.close();
        ZTManagedObjectContext context(ZTLibraryModel::objectModel());
        QString error;
        QVERIFY(!context.open(fixture.path(), &error));
        QVERIFY2(error.contains(QStringLiteral("data.sql")), qPrintable(error));
    }

    void missingColumnsAreAddedToOlderStores()
    {
        ZTLibraryFixture fixture;
        const QString data = fixture.path() + QStringLiteral("/data.sql");
        QVERIFY(sqlOn(data,
                      "DROP TABLE ZZTITEM; CREATE TABLE ZZTITEM (Z_PK INTEGER PRIMARY KEY, Z_ENT INTEGER, "
                      "Z_OPT INTEGER, ZOID VARCHAR, ZTITLE VARCHAR); INSERT INTO ZZTITEM VALUES (7, 13, 1, "
                      "'o', 'Old');"));
        auto context = openContext(fixture);
        const auto books = context->fetch(QStringLiteral("ZTBook"));
        QCOMPARE(books.size(), 1);
        QCOMPARE(books.first()->primaryKey(), 7);
        QCOMPARE(books.first()->primitiveValueForKey(QStringLiteral("title")).toString(),
                 QStringLiteral("Old"));
        books.first()->setPrimitiveValueForKey(QStringLiteral("978"), QStringLiteral("isbn"));
        QVERIFY(context->save());
        QCOMPARE(countRows(data, "SELECT COUNT(*) FROM ZZTITEM WHERE ZISBN = '978'"), 1);
    }

    void fetchFiltersAndSorts()
    {
        ZTLibraryFixture fixture;
        auto context = openContext(fixture);
        for (int order : {2, 0, 1}) {
            auto *list = ZTList::createInManagedObjectContext(context.get(), order);
            list->setName(QStringLiteral("l%1").arg(order));
        }
        const auto lists = context->fetch(QStringLiteral("ZTList"), QStringLiteral("libraryFlag"), false,
                                          QStringLiteral("order"));
        QCOMPARE(lists.size(), 3);
        QCOMPARE(static_cast<ZTList *>(lists[0])->name(), QStringLiteral("l0"));
        QCOMPARE(static_cast<ZTList *>(lists[2])->name(), QStringLiteral("l2"));
    }
};

class TestPropertyList : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void stringArraysReadLikeTheGeneralReader_data()
    {
        QTest::addColumn<QStringList>("strings");
        QTest::newRow("empty") << QStringList();
        QTest::newRow("ascii") << QStringList{QStringLiteral("a"), QStringLiteral("b"), QStringLiteral("a")};
        QTest::newRow("unicode") << QStringList{QStringLiteral("Zoë"), QStringLiteral("日本語"),
                                                QStringLiteral("😀")};
        QStringList many;
        for (int i = 0; i < 300; ++i)
            many << QStringLiteral("0123456789abcdef0123456789abcdef%1").arg(i);
        QTest::newRow("long array and long strings") << many;
    }
    void stringArraysReadLikeTheGeneralReader()
    {
        QFETCH(QStringList, strings);
        const QByteArray blob = ZTPropertyList::serializeStringArray(strings);
        QVERIFY(blob.startsWith("bplist00"));
        bool ok = false;
        QCOMPARE(ZTPropertyList::stringArray(blob, &ok), strings);
        QVERIFY(ok);
        QCOMPARE(ZTPropertyList::deserialize(blob).toStringList(), strings);
    }

    void brokenBlobsReadAsNothing()
    {
        const QByteArray good =
            ZTPropertyList::serializeStringArray({QStringLiteral("x"), QStringLiteral("y")});
        QList<QByteArray> bad{QByteArray(), QByteArray("bplist00"), QByteArray("garbage"),
                              good.left(good.size() - 5), QByteArray("bplist00") + QByteArray(40, '\xff')};
        QByteArray flipped = good;
        flipped[flipped.size() - 9] = '\x7f'; // top object index out of range
        bad << flipped;
        for (const QByteArray &blob : bad) {
            bool ok = true;
            ZTPropertyList::stringArray(blob, &ok);
            QVERIFY(!ok);
        }
        // A property list that is not an array of texts is not read as one.
        bool ok = true;
        ZTPropertyList::stringArray(ZTPropertyList::serialize(QVariantMap{{QStringLiteral("k"), 1}}), &ok);
        QVERIFY(!ok);
    }

    void randomBytesNeverCrashTheReader()
    {
        QRandomGenerator rng(42);
        const QByteArray good =
            ZTPropertyList::serializeStringArray({QStringLiteral("abc"), QStringLiteral("dé")});
        int parsed = 0;
        for (int i = 0; i < 3000; ++i) {
            QByteArray blob = good;
            const int flips = 1 + int(rng.bounded(4));
            for (int f = 0; f < flips; ++f)
                blob[int(rng.bounded(blob.size()))] = char(rng.bounded(256));
            bool ok = false;
            const QStringList strings = ZTPropertyList::stringArray(blob, &ok);
            parsed += ok ? 1 : 0;
            QVERIFY(ok || strings.isEmpty());
        }
        QVERIFY(parsed < 3000);
    }

    void mapsDatesAndNumbersRoundTrip()
    {
        const QVariantMap map{{QStringLiteral("n"), qlonglong(-5)},
                              {QStringLiteral("d"), QDateTime(QDate(2020, 1, 2), QTime(3, 4, 5), Qt::UTC)},
                              {QStringLiteral("r"), 2.5},
                              {QStringLiteral("b"), true},
                              {QStringLiteral("list"), QVariantList{QStringLiteral("a"), qlonglong(1)}}};
        for (auto format : {ZTPropertyList::Format::Binary, ZTPropertyList::Format::Xml}) {
            const QVariantMap back =
                ZTPropertyList::deserialize(ZTPropertyList::serialize(map, format)).toMap();
            QCOMPARE(back.value(QStringLiteral("n")).toLongLong(), -5);
            QCOMPARE(back.value(QStringLiteral("d")).toDateTime(),
                     map.value(QStringLiteral("d")).toDateTime());
            QCOMPARE(back.value(QStringLiteral("r")).toDouble(), 2.5);
            QCOMPARE(back.value(QStringLiteral("b")).toBool(), true);
            QCOMPARE(back.value(QStringLiteral("list")).toList().size(), 2);
        }
    }
};

int runObjectStore(int argc, char **argv)
{
    QTemporaryDir settings;
    ZTTestSupport::useTemporarySettings(settings);
    int status = 0;
    {
        TestObjectStore t;
        status |= QTest::qExec(&t, argc, argv);
    }
    {
        TestPropertyList t;
        status |= QTest::qExec(&t, argc, argv);
    }
    return status;
}
ZT_TEST_CUSTOM_MAIN(TestObjectStore, Core, runObjectStore)

#include "tst_objectstore.moc"
