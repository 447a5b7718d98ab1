#include "sharing/ZTSharingExportController.h"

#include "base/ZTNotificationCenter.h"
#include "library/ZTLibraryFixture.h"
#include "sharing/ZTSharingLayout.h"
#include "sharing/ZTZipReader.h"
#include "store/ZTImage.h"
#include "store/ZTPropertyList.h"
#include "support/ZTTestMain.h"

#include <QBuffer>
#include <QImage>
#include <QXmlStreamReader>
#include <QtTest>

#include <sqlite3.h>

namespace {
QByteArray pngBytes()
{
    QImage image(8, 12, QImage::Format_RGB32);
    image.fill(Qt::darkCyan);
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "PNG");
    return bytes;
}

// Rows of the search index as oid → text, read with SQLite from the bytes.
QMap<QString, QString> searchRows(const QByteArray &database, const QString &folder)
{
    const QString path = folder + QStringLiteral("/search-copy.sql");
    QFile file(path);
    file.open(QIODevice::WriteOnly | QIODevice::Truncate);
    file.write(database);
    file.close();
    QMap<QString, QString> rows;
    sqlite3 *db = nullptr;
    if (sqlite3_open_v2(QFile::encodeName(path).constData(), &db, SQLITE_OPEN_READONLY, nullptr) ==
        SQLITE_OK) {
        sqlite3_stmt *statement = nullptr;
        sqlite3_prepare_v2(db, "SELECT OID, ITEM_TEXT FROM INDEXED_ITEM", -1, &statement, nullptr);
        while (statement && sqlite3_step(statement) == SQLITE_ROW)
            rows.insert(QString::fromUtf8(reinterpret_cast<const char *>(sqlite3_column_text(statement, 0))),
                        QString::fromUtf8(reinterpret_cast<const char *>(sqlite3_column_text(statement, 1))));
        sqlite3_finalize(statement);
    } else {
        rows.insert(QStringLiteral("<error>"), QString::fromUtf8(sqlite3_errmsg(db)));
    }
    sqlite3_close(db);
    return rows;
}

// Element name → text of the item file's children, and its root element.
QPair<QString, QMap<QString, QString>> parseItemXML(const QByteArray &bytes)
{
    QXmlStreamReader xml(bytes);
    QString root;
    QMap<QString, QString> fields;
    while (!xml.atEnd()) {
        if (xml.readNext() != QXmlStreamReader::StartElement)
            continue;
        if (root.isEmpty()) {
            root = xml.name().toString();
            continue;
        }
        const QString name = xml.name().toString();
        fields.insert(name, xml.readElementText(QXmlStreamReader::IncludeChildElements).trimmed());
    }
    if (xml.hasError())
        root = QStringLiteral("<error: %1>").arg(xml.errorString());
    return {root, fields};
}
} // namespace

class TestSharingExport : public QObject {
    Q_OBJECT
private slots:
    void initTestCase();
    void init();
    void packageHoldsTheLibrary();
    void emptyLibraryStillListsEveryFixedFile();
    void listFoldersAreNamedAnewAtEachExport();
    void unreadableLibraryGivesSizeZero();
    void queueIsFirstInFirstOutWithoutDuplicates();
    void layoutTablesPerKind_data();
    void layoutTablesPerKind();

private:
    quint64 exportOnce(const QString &library);
    QTemporaryDir m_cache;
    std::unique_ptr<QTemporaryDir> m_scratch;
};

void TestSharingExport::initTestCase()
{
    // The shared directory lives in the caches folder; keep it in the test's own.
    qputenv("XDG_CACHE_HOME", QFile::encodeName(m_cache.path()));
}

void TestSharingExport::init()
{
    m_scratch = std::make_unique<QTemporaryDir>();
    QDir(ZTSharingExportController::sharedDirectoryPath()).removeRecursively();
}

quint64 TestSharingExport::exportOnce(const QString &library)
{
    return ZTSharingExportController::performExportForURL(library,
                                                          m_scratch->filePath(QStringLiteral("temp")),
                                                          ZTSharingExportController::sharedDirectoryPath());
}

void TestSharingExport::packageHoldsTheLibrary()
{
    ZTLibraryFixture fixture;
    ZTItem *first = fixture.add({{"title", "Alpha & Omega"},
                                 {"authors", QStringList{"Ann Lee", "Bo Chen"}},
                                 {"isbn", "9780306406157"},
                                 {"keywords", QStringList{"greek"}}});
    first->replaceCover({}, pngBytes(), QStringLiteral("cover.png"), {}, true);
    const QString a = first->oid();
    const QString b = fixture.addTitled(QStringLiteral("Beta"));
    const QString c = fixture.addTitled(QStringLiteral("Gamma"), {{"publisher", "Delta Press"}});
    fixture.addList(QStringLiteral("Favourites"), {a, c});
    fixture.addSmartList(QStringLiteral("Smart"), {b});
    QString error;
    QVERIFY2(fixture.document().saveDocument(&error), qPrintable(error));
    const QStringList mainOrder = fixture.document().mainList()->itemOids();
    const QString coverFile = first->coverImage()->filename();
    QVERIFY(!coverFile.isEmpty());

    const quint64 size = exportOnce(fixture.path());
    QVERIFY(size > 0);
    const QString id = QString::number(ZTSharingExportController::nodeIDForPath(fixture.path()));
    const QDir shared(ZTSharingExportController::sharedDirectoryPath() + QLatin1Char('/') + id);
    QCOMPARE(quint64(QFileInfo(shared.filePath(id + ".zip")).size()), size);
    QCOMPARE(ZTPropertyList::readFile(shared.filePath("manifest.xml")).toStringList(),
             (QStringList{"info.xml", id + ".zip"}));
    QVERIFY(!QFileInfo::exists(m_scratch->filePath("temp")));

    ZTZipReader zip(shared.filePath(id + ".zip"));
    QVERIFY(zip.isOpen());
    const QStringList names = zip.names();
    for (const QString &name : names)
        QVERIFY2(name.startsWith(id + "/"), qPrintable(name));
    QCOMPARE(zip.compressionOf(id + "/items.xml"), int(ZIP_CM_DEFLATE));
    auto plist = [&](const QString &name) { return ZTPropertyList::deserialize(zip.read(id + "/" + name)); };

    const QStringList manifest = plist("manifest.xml").toStringList();
    QCOMPARE(manifest.mid(0, 5),
             (QStringList{"info.xml", "lists.xml", "items.xml", "filter.xml", "search.sql"}));
    QVERIFY(!manifest.contains("manifest.xml"));
    QVERIFY(manifest.contains("items/" + a + ".xml"));
    QVERIFY(manifest.contains("images/" + coverFile));
    QCOMPARE(manifest.mid(manifest.size() - 2), (QStringList{"layoutDict.xml", "localizedStringsDict.xml"}));
    for (const QString &name : manifest)
        QVERIFY2(names.contains(id + "/" + name), qPrintable(name));
    QCOMPARE(zip.read(id + "/images/" + coverFile), pngBytes());

    const QVariantMap info = plist("info.xml").toMap();
    QCOMPARE(info.value("filename").toString(), QStringLiteral("Test.ztbooklib"));
    QCOMPARE(info.value("name").toString(), QStringLiteral("Test"));
    QCOMPARE(info.value("itemCount").toInt(), 3);
    QCOMPARE(info.value("id").toString(), id);
    QCOMPARE(info.value("type").toString(), QStringLiteral("book"));
    QCOMPARE(zip.read(id + "/info.xml"), [&] {
        QFile f(shared.filePath("info.xml"));
        f.open(QIODevice::ReadOnly);
        return f.readAll();
    }());

    const QVariantList lists = plist("lists.xml").toList();
    QCOMPARE(lists.size(), 3);
    QCOMPARE(lists[0].toMap(), (QVariantMap{{"name", "Library"}, {"count", 3}, {"type", "library"}}));
    const QVariantMap favourites = lists[1].toMap();
    QCOMPARE(favourites.value("name").toString(), QStringLiteral("Favourites"));
    QCOMPARE(favourites.value("count").toInt(), 2);
    QCOMPARE(favourites.value("type").toString(), QStringLiteral("list"));
    QCOMPARE(lists[2].toMap().value("type").toString(), QStringLiteral("smartList"));
    const QString listFolder = favourites.value("oid").toString();
    QCOMPARE(plist(listFolder + "/items.xml").toStringList(), (QStringList{a, c}));
    QVERIFY(plist(listFolder + "/filter.xml").toMap().contains("[[[COUNT]]]"));

    QCOMPARE(plist("items.xml").toStringList(), mainOrder);
    QCOMPARE(plist("titleDict.xml").toMap(), (QVariantMap{{a, "Alpha & Omega"}, {b, "Beta"}, {c, "Gamma"}}));
    QCOMPARE(plist("subtitleDict.xml").toMap(), (QVariantMap{{a, "Ann Lee, Bo Chen"}, {b, ""}, {c, ""}}));
    QCOMPARE(plist("imageFilenameDict.xml").toMap(), (QVariantMap{{a, coverFile}}));

    const QByteArray itemFile = zip.read(id + "/items/" + a + ".xml");
    QVERIFY(itemFile.startsWith("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<book>"));
    const auto [root, fields] = parseItemXML(itemFile);
    QCOMPARE(root, QStringLiteral("book"));
    QCOMPARE(fields.value("title"), QStringLiteral("Alpha & Omega"));
    QCOMPARE(fields.value("isbn"), QStringLiteral("9780306406157"));
    QCOMPARE(fields.value("image"), coverFile);
    QVERIFY(!parseItemXML(zip.read(id + "/items/" + b + ".xml")).second.contains("image"));

    const QMap<QString, QString> rows = searchRows(zip.read(id + "/search.sql"), m_scratch->path());
    QStringList expectedRows{a, b, c};
    expectedRows.sort();
    QCOMPARE(rows.keys(), expectedRows);
    QVERIFY2(rows.value(a).contains("Alpha & Omega") && rows.value(a).contains("Ann Lee Bo Chen") &&
                 rows.value(a).contains("9780306406157") && rows.value(a).contains("greek"),
             qPrintable(rows.value(a)));
    QVERIFY(rows.value(c).contains("Delta Press"));

    const QVariantMap layout = plist("layoutDict.xml").toMap();
    QVERIFY(layout.value("wideAttributes").toStringList().contains("description"));
    QVERIFY(!layout.value("lineAttributes").toStringList().contains("authors"));
    QCOMPARE(layout.value("subtitleKey").toString(), QStringLiteral("authors"));
    QCOMPARE(plist("localizedStringsDict.xml").toMap().value("en").toMap().value("LANGUAGE").toString(),
             QStringLiteral("en"));

    // The library itself is only read.
    QVERIFY(!fixture.document().isDocumentEdited());
    QCOMPARE(fixture.document().mainList()->itemOids(), mainOrder);
}

void TestSharingExport::emptyLibraryStillListsEveryFixedFile()
{
    ZTLibraryFixture fixture(ZTMediaKind::Movie);
    QVERIFY(exportOnce(fixture.path()) > 0);
    const QString id = QString::number(ZTSharingExportController::nodeIDForPath(fixture.path()));
    ZTZipReader zip(ZTSharingExportController::sharedDirectoryPath() + "/" + id + "/" + id + ".zip");
    auto plist = [&](const QString &name) { return ZTPropertyList::deserialize(zip.read(id + "/" + name)); };
    QCOMPARE(plist("manifest.xml").toStringList(),
             (QStringList{"info.xml", "lists.xml", "items.xml", "filter.xml", "search.sql", "titleDict.xml",
                          "subtitleDict.xml", "imageFilenameDict.xml", "layoutDict.xml",
                          "localizedStringsDict.xml"}));
    for (const QString &name : {"titleDict.xml", "subtitleDict.xml", "imageFilenameDict.xml"}) {
        const QVariant value = plist(name);
        QCOMPARE(value.typeId(), QMetaType::QVariantMap);
        QVERIFY(value.toMap().isEmpty());
    }
    QCOMPARE(plist("info.xml").toMap().value("type").toString(), QStringLiteral("movie"));
    QCOMPARE(plist("info.xml").toMap().value("itemCount").toInt(), 0);
    QVERIFY(searchRows(zip.read(id + "/search.sql"), m_scratch->path()).isEmpty());
}

void TestSharingExport::listFoldersAreNamedAnewAtEachExport()
{
    ZTLibraryFixture fixture(ZTMediaKind::Album);
    fixture.addList(QStringLiteral("Jazz"), {fixture.addTitled(QStringLiteral("Kind of Blue"))});
    QVERIFY(fixture.document().saveDocument());
    const QString id = QString::number(ZTSharingExportController::nodeIDForPath(fixture.path()));
    auto listOid = [&] {
        ZTZipReader zip(ZTSharingExportController::sharedDirectoryPath() + "/" + id + "/" + id + ".zip");
        return ZTPropertyList::deserialize(zip.read(id + "/lists.xml"))
            .toList()
            .value(1)
            .toMap()
            .value("oid")
            .toString();
    };
    QVERIFY(exportOnce(fixture.path()) > 0);
    const QString firstOid = listOid();
    QVERIFY(exportOnce(fixture.path()) > 0);
    const QString secondOid = listOid();
    QVERIFY(!firstOid.isEmpty());
    QVERIFY(!secondOid.isEmpty());
    QVERIFY(firstOid != secondOid);
}

void TestSharingExport::unreadableLibraryGivesSizeZero()
{
    // A package whose store is no database, and a path that does not exist.
    const QString broken = m_scratch->filePath("Broken.ztbooklib");
    QDir().mkpath(broken);
    QFile store(broken + "/data.sql");
    QVERIFY(store.open(QIODevice::WriteOnly));
    store.write(QByteArray(4096, 'x'));
    store.close();
    QCOMPARE(exportOnce(broken), quint64(0));
    QCOMPARE(exportOnce(m_scratch->filePath("Missing.ztbooklib")), quint64(0));
    QCOMPARE(exportOnce(QString()), quint64(0));
    const QString id = QString::number(ZTSharingExportController::nodeIDForPath(broken));
    QVERIFY(!QFileInfo::exists(ZTSharingExportController::sharedDirectoryPath() + "/" + id));
    QVERIFY(!QFileInfo::exists(m_scratch->filePath("temp")));
}

void TestSharingExport::queueIsFirstInFirstOutWithoutDuplicates()
{
    ZTLibraryFixture first;
    ZTLibraryFixture second(ZTMediaKind::Comic);
    second.addTitled(QStringLiteral("Watchmen"));
    QVERIFY(second.document().saveDocument());

    ZTSharingExportController controller;
    controller.setTempRootPath(m_scratch->filePath("queue-temp"));
    QList<QPair<QString, quint64>> exported;
    ZTObservation observation(
        QString::fromLatin1(kZFExportedURLNotification), nullptr, [&](const ZTNotification &note) {
            QCOMPARE(*static_cast<const QString *>(note.object), note.userInfo.value("url").toString());
            exported << qMakePair(note.userInfo.value("url").toString(),
                                  note.userInfo.value("fileSize").toULongLong());
        });

    controller.exportLibrary(first.path());
    controller.exportLibrary(second.path());
    controller.exportLibrary(first.path()); // still waiting: not queued twice
    QCOMPARE(controller.sharingQueue(), (QStringList{second.path(), first.path()}));

    controller.checkExport();
    QVERIFY(controller.isExporting());
    QCOMPARE(controller.sharingQueue(), QStringList{second.path()});
    // Being exported, it may wait for another round.
    controller.exportLibrary(first.path());
    QCOMPARE(controller.sharingQueue(), (QStringList{first.path(), second.path()}));
    controller.checkExport(); // one export at a time
    QCOMPARE(controller.sharingQueue().size(), 2);

    QTRY_COMPARE_WITH_TIMEOUT(exported.size(), 1, 30000);
    QCOMPARE(exported[0].first, first.path());
    QVERIFY(exported[0].second > 0);
    QVERIFY(!controller.isExporting());

    controller.checkExport();
    QTRY_COMPARE_WITH_TIMEOUT(exported.size(), 2, 30000);
    QCOMPARE(exported[1].first, second.path());
    const QString id = QString::number(ZTSharingExportController::nodeIDForPath(second.path()));
    QCOMPARE(exported[1].second, quint64(QFileInfo(ZTSharingExportController::sharedDirectoryPath() + "/" +
                                                   id + "/" + id + ".zip")
                                             .size()));

    controller.stopSharing();
    QVERIFY(controller.sharingQueue().isEmpty());
    QVERIFY(!controller.isExporting());
    controller.exportLibrary(first.path());
    controller.stopSharing();
    QVERIFY(controller.sharingQueue().isEmpty());
}

void TestSharingExport::layoutTablesPerKind_data()
{
    QTest::addColumn<ZTMediaKind>("kind");
    QTest::addColumn<QString>("subtitle");
    QTest::addColumn<int>("keyCount");
    QTest::addColumn<QString>("multipleKey");
    QTest::addColumn<QString>("multipleTag");
    QTest::newRow("book") << ZTMediaKind::Book << "authors" << 33 << "locSubjects"
                          << "locSubject";
    QTest::newRow("album") << ZTMediaKind::Album << "artists" << 28 << "tracks"
                           << "track";
    QTest::newRow("movie") << ZTMediaKind::Movie << "studio" << 32 << "actors"
                           << "actor";
    QTest::newRow("comic") << ZTMediaKind::Comic << "publisher" << 35 << "stories"
                           << "story";
}

void TestSharingExport::layoutTablesPerKind()
{
    QFETCH(ZTMediaKind, kind);
    QFETCH(QString, subtitle);
    QFETCH(int, keyCount);
    QFETCH(QString, multipleKey);
    QFETCH(QString, multipleTag);
    QCOMPARE(ZTSharingLayout::formatiPhoneSubtitleKey(kind), subtitle);
    QCOMPARE(ZTSharingLayout::formatiPhoneKeys(kind).size(), keyCount);
    QCOMPARE(ZTSharingLayout::formatiPhoneKeysMultiple(kind).value(multipleKey).toString(), multipleTag);
    // Every key is shown either on a line or wide, never both.
    const QStringList line = ZTSharingLayout::formatiPhoneKeysLine(kind);
    for (const QString &key : ZTSharingLayout::formatiPhoneKeysWide(kind))
        QVERIFY(!line.contains(key));
    const QStringList wide = ZTSharingLayout::formatiPhoneKeysWide(kind);
    for (const QString &key : ZTSharingLayout::formatiPhoneKeys(kind))
        QVERIFY2(line.contains(key) != wide.contains(key), qPrintable(key));
    QVERIFY(wide.contains(QStringLiteral("productDescription")));
}

ZT_TEST_MAIN(TestSharingExport)
#include "tst_sharingexport.moc"
