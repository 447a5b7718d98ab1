#include "sharing/ZTSharingController.h"

#include "base/ZTSettings.h"
#include "library/ZTLibraryFixture.h"
#include "sharing/ZTSharingExportController.h"
#include "sharing/ZTWebServer.h"
#include "sharing/ZTZipReader.h"
#include "sharing/http/HTTPServicePublisher.h"
#include "store/ZTPropertyList.h"
#include "support/ZTHttpRequest.h"
#include "support/ZTTestMain.h"

#include <QProcess>
#include <QTcpSocket>
#include <QXmlStreamReader>
#include <QtTest>

namespace {
class RecordingPublisher : public HTTPServicePublisher {
public:
    void publish(const QString &name, const QString &type, const QString &domain, quint16 port) override
    {
        m_name = name;
        m_type = type;
        m_domain = domain;
        m_port = port;
    }
    void unpublish() override { m_name.clear(); }
    QString publishedName() const override { return m_name; }
    QString m_name, m_type, m_domain;
    quint16 m_port = 0;
};

using Reply = ZTHttpReply;

Reply request(quint16 port, const QByteArray &method, const QByteArray &target)
{
    return ztHttpRequest(port, method, target);
}
} // namespace

class TestSharingController : public QObject {
    Q_OBJECT
private slots:
    void initTestCase();
    void init();
    void emptyListIsServedAsEmptyArray();
    void sharedLibrariesAreExportedAndServed();
    void requestsWithEqualsSignQueueExports_data();
    void requestsWithEqualsSignQueueExports();
    void savedLibraryIsExportedAnew();
    void itemCountFromDatabaseFile();

private:
    void runExports(ZTSharingExportController &exporter, int count);
    QTemporaryDir m_cache;
    std::unique_ptr<QTemporaryDir> m_settings;
    QString m_shared;
};

void TestSharingController::initTestCase()
{
    qputenv("XDG_CACHE_HOME", QFile::encodeName(m_cache.path()));
    m_shared = ZTSharingController::sharedDirectoryPath();
    QVERIFY(m_shared.startsWith(m_cache.path()));
    QVERIFY(m_shared.endsWith("/Zettary/Shared"));
}

void TestSharingController::init()
{
    m_settings = std::make_unique<QTemporaryDir>();
    ZTTestSupport::useTemporarySettings(*m_settings);
    QDir(m_shared).removeRecursively();
    QDir().mkpath(m_shared);
}

void TestSharingController::runExports(ZTSharingExportController &exporter, int count)
{
    int done = 0;
    ZTObservation observation(QString::fromLatin1(kZFExportedURLNotification), nullptr,
                              [&](const ZTNotification &) { ++done; });
    for (int round = 0; round < count; ++round) {
        exporter.checkExport();
        QTRY_COMPARE_WITH_TIMEOUT(done, round + 1, 30000);
    }
}

void TestSharingController::emptyListIsServedAsEmptyArray()
{
    // Left-overs of libraries no longer shared are pruned; the list file stays.
    QDir(m_shared).mkpath("424242");
    QFile stray(m_shared + "/stray.txt");
    QVERIFY(stray.open(QIODevice::WriteOnly));
    stray.close();

    RecordingPublisher publisher;
    ZTSharingExportController exporter;
    ZTSharingController sharing(exporter, &publisher);
    QVERIFY(!sharing.webServer().isStarted()); // the setting is off
    QVERIFY(sharing.startSharing());
    QCOMPARE(publisher.m_type, QStringLiteral("_zettary2._tcp."));
    QCOMPARE(publisher.m_domain, QStringLiteral("local."));
    QVERIFY2(QRegularExpression("^Zettary Sharing \\[\\d+\\]$").match(publisher.m_name).hasMatch(),
             qPrintable(publisher.m_name));
    QCOMPARE(publisher.m_port, sharing.listeningPort());
    const QString firstName = publisher.m_name;
    QVERIFY(sharing.startSharing());
    QVERIFY(publisher.m_name != firstName);

    QVERIFY(!QFileInfo::exists(m_shared + "/424242"));
    QVERIFY(!QFileInfo::exists(m_shared + "/stray.txt"));
    const Reply reply = request(sharing.listeningPort(), "GET", "/sharedLibraries.xml");
    QCOMPARE(reply.status, 200);
    const QVariant list = ZTPropertyList::deserialize(reply.body);
    QCOMPARE(list.typeId(), QMetaType::QVariantList);
    QVERIFY(list.toList().isEmpty());
    sharing.stopSharing();
    QVERIFY(!sharing.webServer().isStarted());
}

void TestSharingController::sharedLibrariesAreExportedAndServed()
{
    ZTLibraryFixture books;
    books.addTitled(QStringLiteral("Dune"), {{"authors", QStringList{"Frank Herbert"}}});
    books.addTitled(QStringLiteral("Emma"));
    QVERIFY(books.document().saveDocument());
    ZTLibraryFixture films(ZTMediaKind::Movie);
    films.addTitled(QStringLiteral("Alien"));
    QVERIFY(films.document().saveDocument());
    ZTTestSupport::useTemporarySettings(*m_settings);
    // The same library twice, a bookmark that no longer resolves and a folder of no known kind.
    QDir().mkpath(m_settings->filePath("Notes.other"));
    ZTSettings::setValue(ZTSettingsKey::SharedLibraries,
                         QStringList{books.path(), films.path(), books.path() + "/",
                                     m_settings->filePath("Gone.ztbooklib"),
                                     m_settings->filePath("Notes.other")});
    ZTSettings::setValue(ZTSettingsKey::SharingState, true);

    ZTSharingExportController exporter;
    exporter.setTempRootPath(m_settings->filePath("export-temp"));
    ZTSharingController sharing(exporter, nullptr);
    QVERIFY(sharing.webServer().isStarted()); // the setting is on
    const QList<QVariantMap> libraries = sharing.sharedLibraries();
    QCOMPARE(libraries.size(), 2);
    const QString bookID = QString::number(ZTSharingExportController::nodeIDForPath(books.path()));
    const QString filmID = QString::number(ZTSharingExportController::nodeIDForPath(films.path()));
    QCOMPARE(libraries[0].value("id").toString(), bookID);
    QCOMPARE(libraries[0].value("type").toString(), QStringLiteral("book"));
    QCOMPARE(libraries[0].value("name").toString(), QStringLiteral("Test"));
    QCOMPARE(libraries[0].value("itemCount").toInt(), 2);
    QCOMPARE(libraries[0].value("status").toInt(), 0);
    QCOMPARE(libraries[1].value("type").toString(), QStringLiteral("movie"));
    QCOMPARE(exporter.sharingQueue().size(), 2);

    runExports(exporter, 2);
    const quint16 port = sharing.listeningPort();
    const QVariantList served =
        ZTPropertyList::deserialize(request(port, "GET", "/sharedLibraries.xml").body).toList();
    QCOMPARE(served.size(), 2);
    for (const QVariant &entry : served) {
        const QVariantMap library = entry.toMap();
        QCOMPARE(library.value("status").toInt(), 1);
        const QString id = library.value("id").toString();
        QCOMPARE(library.value("fileSize").toULongLong(),
                 quint64(QFileInfo(m_shared + "/" + id + "/" + id + ".zip").size()));
        QVERIFY(library.value("url").toString().startsWith("file:///"));
        QCOMPARE(QSet<QString>(library.keyBegin(), library.keyEnd()),
                 (QSet<QString>{"id", "filename", "name", "type", "status", "fileSize", "itemCount", "url"}));
    }

    const Reply manifest = request(port, "GET", "/" + bookID.toLatin1() + "/manifest.xml");
    QCOMPARE(manifest.status, 200);
    QCOMPARE(ZTPropertyList::deserialize(manifest.body).toStringList(),
             (QStringList{"info.xml", bookID + ".zip"}));
    const Reply head = request(port, "HEAD", "/" + bookID.toLatin1() + "/" + bookID.toLatin1() + ".zip");
    QCOMPARE(head.status, 200);
    QVERIFY(head.body.isEmpty());
    const qint64 zipSize = QFileInfo(m_shared + "/" + bookID + "/" + bookID + ".zip").size();
    QVERIFY2(head.head.contains("Content-Length: " + QByteArray::number(zipSize)), head.head.constData());

    // The package as the companion fetches it, through a real HTTP client.
    const QString zipPath = m_settings->filePath("fetched.zip");
    QProcess curl;
    curl.start("curl", {"-s", "-f", "-o", zipPath,
                        QStringLiteral("http://127.0.0.1:%1/%2/%2.zip").arg(port).arg(bookID)});
    QVERIFY(curl.waitForFinished(30000));
    QCOMPARE(curl.exitCode(), 0);
    ZTZipReader zip(zipPath);
    QVERIFY(zip.isOpen());
    QCOMPARE(QFileInfo(zipPath).size(), zipSize);
    const QVariantMap titles = ZTPropertyList::deserialize(zip.read(bookID + "/titleDict.xml")).toMap();
    QCOMPARE(titles.size(), 2);
    const QString dune = titles.key(QStringLiteral("Dune"));
    QVERIFY(!dune.isEmpty());
    QXmlStreamReader xml(zip.read(bookID + "/items/" + dune + ".xml"));
    QStringList authors;
    while (!xml.atEnd())
        if (xml.readNext() == QXmlStreamReader::StartElement && xml.name() == QLatin1String("author"))
            authors << xml.readElementText();
    QVERIFY2(!xml.hasError(), qPrintable(xml.errorString()));
    QCOMPARE(authors, QStringList{"Frank Herbert"});
}

void TestSharingController::requestsWithEqualsSignQueueExports_data()
{
    QTest::addColumn<QByteArray>("target");
    QTest::addColumn<bool>("queued");
    QTest::addColumn<int>("status");
    QTest::newRow("known id") << QByteArray("/refresh=%ID%") << true << 404;
    QTest::newRow("id then more") << QByteArray("/x=%ID%&y=2") << true << 404;
    QTest::newRow("unknown id") << QByteArray("/x=12") << false << 404;
    QTest::newRow("value request") << QByteArray("/value=%ID%") << false << 404;
    QTest::newRow("no equals sign") << QByteArray("/%ID%/info.xml") << false << 200;
    QTest::newRow("not a number") << QByteArray("/x=abc") << false << 404;
    QTest::newRow("scan token") << QByteArray("/scan=Y29kZT05NzgwMzA2NDA2MTU3") << false << 404;
}

void TestSharingController::requestsWithEqualsSignQueueExports()
{
    QFETCH(QByteArray, target);
    QFETCH(bool, queued);
    QFETCH(int, status);
    ZTLibraryFixture books;
    ZTTestSupport::useTemporarySettings(*m_settings);
    ZTSharingExportController exporter;
    exporter.setTempRootPath(m_settings->filePath("export-temp"));
    ZTSharingController sharing(exporter, nullptr, QStringList{books.path()});
    QVERIFY(sharing.startSharing());
    runExports(exporter, 1); // complete: a request still asks for a new export
    QCOMPARE(sharing.sharedLibraries().value(0).value("status").toInt(), 1);
    QVERIFY(exporter.sharingQueue().isEmpty());

    const QByteArray id = QByteArray::number(ZTSharingExportController::nodeIDForPath(books.path()));
    const Reply reply = request(sharing.listeningPort(), "GET", target.replace("%ID%", id));
    QCOMPARE(reply.status, status);
    QCOMPARE(exporter.sharingQueue(), queued ? QStringList{books.path()} : QStringList());
}

void TestSharingController::savedLibraryIsExportedAnew()
{
    ZTLibraryFixture books;
    ZTTestSupport::useTemporarySettings(*m_settings);
    ZTSharingExportController exporter;
    exporter.setTempRootPath(m_settings->filePath("export-temp"));
    ZTSharingController sharing(exporter, nullptr, QStringList{books.path()});
    QVERIFY(sharing.startSharing());
    runExports(exporter, 1);
    const QString id = QString::number(ZTSharingExportController::nodeIDForPath(books.path()));
    QVERIFY(QFileInfo::exists(m_shared + "/" + id + "/" + id + ".zip"));

    books.addTitled(QStringLiteral("New arrival"));
    QVERIFY(books.document().saveDocument());
    // Until the new export the companion sees the library as not ready.
    QVERIFY(!QFileInfo::exists(m_shared + "/" + id + "/" + id + ".zip"));
    QCOMPARE(sharing.sharedLibraries().value(0).value("status").toInt(), 0);
    QCOMPARE(sharing.sharedLibraries().value(0).value("itemCount").toInt(), 1);
    QCOMPARE(exporter.sharingQueue(), QStringList{books.path()});
    runExports(exporter, 1);
    QCOMPARE(sharing.sharedLibraries().value(0).value("status").toInt(), 1);
    ZTZipReader zip(m_shared + "/" + id + "/" + id + ".zip");
    QCOMPARE(
        ZTPropertyList::deserialize(zip.read(id + "/titleDict.xml")).toMap().values().value(0).toString(),
        QStringLiteral("New arrival"));
}

void TestSharingController::itemCountFromDatabaseFile()
{
    ZTLibraryFixture books;
    books.addTitled("One");
    books.addTitled("Two");
    books.addTitled("Three");
    QVERIFY(books.document().saveDocument());
    QCOMPARE(ZTSharingController::itemCountFromDatabaseFile(books.path() + "/data.sql"), quint64(3));
    QCOMPARE(ZTSharingController::itemCountFromDatabaseFile(books.path() + "/missing.sql"), quint64(0));
    QFile junk(m_settings->filePath("junk.sql"));
    QVERIFY(junk.open(QIODevice::WriteOnly));
    junk.write("not a database at all, not even close to one");
    junk.close();
    QCOMPARE(ZTSharingController::itemCountFromDatabaseFile(junk.fileName()), quint64(0));
}

ZT_TEST_MAIN(TestSharingController)
#include "tst_sharingcontroller.moc"
