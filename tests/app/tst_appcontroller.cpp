#include "app/ZTAppController.h"
#include "base/ZTSettings.h"
#include "library/ZTDocumentDefaults.h"
#include "store/ZTManagedObjectContext.h"
#include "store/ZTPropertyList.h"
#include "support/ZTTestMain.h"
#include "support/ZTTestSupport.h"

#include <QDir>
#include <QFile>
#include <QStandardPaths>
#include <QtTest>

class TestAppController : public QObject {
    Q_OBJECT
private:
    QTemporaryDir m_dir;

    void freshSettings()
    {
        QFile::remove(m_dir.filePath(QStringLiteral("settings.conf")));
        ZTTestSupport::useTemporarySettings(m_dir);
    }

    static void writeFile(const QString &path, const QByteArray &bytes)
    {
        QDir().mkpath(QFileInfo(path).absolutePath());
        QFile f(path);
        QVERIFY(f.open(QIODevice::WriteOnly));
        f.write(bytes);
    }

private Q_SLOTS:
    void initTestCase()
    {
        // Keep the cache and temporary folders of this test to itself.
        qputenv("XDG_CACHE_HOME", m_dir.filePath(QStringLiteral("cache")).toUtf8());
        qputenv("TMPDIR", m_dir.filePath(QStringLiteral("tmp")).toUtf8());
        QDir().mkpath(m_dir.filePath(QStringLiteral("tmp")));
    }

    void firstStartWritesSettingsUntilItHasRun()
    {
        freshSettings();
        QVERIFY(ZTAppController::isFirstRun());
        ZTAppController::initializeDefaults();
        QCOMPARE(ZTSettings::value(ZTSettingsKey::DefaultLocale).toString(), QStringLiteral("US"));
        QCOMPARE(ZTSettings::value(ZTSettingsKey::DefaultCurrency).toString(), QStringLiteral("USD"));
        QCOMPARE(ZTSettings::value(ZTSettingsKey::CoverImagesState).toInt(), 1);
        const QVariantList books = ZTSettings::value(ZTSettingsKey::LocaleBooksArray).toList();
        QCOMPARE(books.size(), 9);
        QCOMPARE(books.first().toMap().value(QStringLiteral("locale")).toString(),
                 QStringLiteral("Books_US_Amazon"));
        QCOMPARE(books.last().toMap().value(QStringLiteral("locale")).toString(),
                 QStringLiteral("Books_US_LibraryOfCongress"));
        QCOMPARE(books.last().toMap().value(QStringLiteral("activeFlag")).toInt(), 1);
        QCOMPARE(ZTSettings::value(ZTSettingsKey::LocaleMusicArray).toList().size(), 8);
        QCOMPARE(ZTSettings::value(ZTSettingsKey::LocaleComicsArray).toList().size(), 2);
        QCOMPARE(ZTSettings::value(ZTSettingsKey::StatisticsDisplay)
                     .toMap()
                     .value(QStringLiteral("totalPaid"))
                     .toInt(),
                 1);
        // Until the first start has run, a second start writes the values again.
        QVERIFY(ZTAppController::isFirstRun());
        ZTSettings::setValue(ZTSettingsKey::DefaultLocale, QStringLiteral("DE"));
        ZTAppController::initializeDefaults();
        QCOMPARE(ZTSettings::value(ZTSettingsKey::DefaultLocale).toString(), QStringLiteral("US"));
        // After it, the user's choices stay.
        ZTAppController::ensureFirstRun();
        QVERIFY(!ZTAppController::isFirstRun());
        ZTSettings::setValue(ZTSettingsKey::DefaultLocale, QStringLiteral("DE"));
        ZTAppController::initializeDefaults();
        QCOMPARE(ZTSettings::value(ZTSettingsKey::DefaultLocale).toString(), QStringLiteral("DE"));
    }

    void legacyKeysGoAtEveryStart()
    {
        freshSettings();
        for (const QString &key : {ZTSettingsKey::DefaultDetailLook, ZTSettingsKey::OpenDocuments,
                                   ZTSettingsKey::SharedDocuments, ZTSettingsKey::AllowSpotlight})
            ZTSettings::setValue(key, 1);
        ZTSettings::setValue(ZTSettingsKey::DefaultCurrency, QStringLiteral("EUR"));
        ZTAppController::processLegacyPreferences();
        QVERIFY(!ZTSettings::contains(ZTSettingsKey::OpenDocuments));
        QVERIFY(!ZTSettings::contains(ZTSettingsKey::AllowSpotlight));
        QCOMPARE(ZTSettings::value(ZTSettingsKey::DefaultCurrency).toString(), QStringLiteral("EUR"));
    }

    void documentDefaultsReadTheSettings()
    {
        freshSettings();
        QCOMPARE(ZTDocumentDefaults::defaultLocaleCode(), QStringLiteral("US"));
        QCOMPARE(ZTDocumentDefaults::defaultCurrencyCode(), QStringLiteral("USD"));
        QCOMPARE(ZTDocumentDefaults::associateTagURLSuffix(), QString());
        ZTSettings::setValue(ZTSettingsKey::DefaultLocale, QStringLiteral("UK"));
        ZTSettings::setValue(ZTSettingsKey::AssociateTag, QStringLiteral("zettary-20"));
        QCOMPARE(ZTDocumentDefaults::defaultLocaleCode(), QStringLiteral("GB"));
        QCOMPARE(ZTDocumentDefaults::associateTagURLSuffix(), QStringLiteral("/ref=nosim/zettary-20"));
    }

    void reopeningFollowsTheRecordedOrder()
    {
        freshSettings();
        QVERIFY(ZTAppController::librariesToReopen().isEmpty());
        QTemporaryDir libraries;
        QStringList paths;
        for (const char *name : {"a.ztbooklib", "b.ztmusiclib", "c.ztmovielib"}) {
            paths << libraries.filePath(QLatin1String(name));
            QVERIFY(QDir().mkpath(paths.last()));
        }
        // Three open, the second frontmost: it is recorded last.
        ZTAppController::recordOpenLibraries({{paths[0], false}, {paths[2], true}, {paths[1], false}});
        QDir(paths[0]).removeRecursively(); // a library deleted since is skipped
        const auto reopen = ZTAppController::librariesToReopen();
        QCOMPARE(reopen.size(), 2);
        QCOMPARE(reopen[0].path, paths[2]);
        QVERIFY(reopen[0].isMiniaturized);
        QCOMPARE(reopen[1].path, paths[1]);
        QVERIFY(!reopen[1].isMiniaturized);
    }

    void searchStubsLeadToTheirItem()
    {
        QTemporaryDir dir;
        const QString library = dir.filePath(QStringLiteral("lib.ztbooklib"));
        QVERIFY(QDir().mkpath(library));
        QVERIFY(ZTPropertyList::writeFile(dir.filePath(QStringLiteral("document.xml")),
                                          QVariantMap{{QStringLiteral("document"), library}},
                                          ZTPropertyList::Format::Xml));
        writeFile(dir.filePath(QStringLiteral("item.ztbook")), "<item><oid> abc-123 </oid></item>");
        auto target = ZTAppController::resolveSearchStub(dir.filePath(QStringLiteral("item.ztbook")));
        QVERIFY(target.isStub);
        QCOMPARE(target.oid, QStringLiteral("abc-123"));
        QCOMPARE(target.libraryPath, library);
        // Blank oid, no oid, other extension, or not UTF-8: answered, but leads nowhere.
        writeFile(dir.filePath(QStringLiteral("blank.ztmovie")), "<oid>   </oid>");
        QVERIFY(ZTAppController::resolveSearchStub(dir.filePath(QStringLiteral("blank.ztmovie")))
                    .libraryPath.isEmpty());
        writeFile(dir.filePath(QStringLiteral("latin.ztcomic")), "<oid>\xe9\xff</oid>");
        QVERIFY(
            ZTAppController::resolveSearchStub(dir.filePath(QStringLiteral("latin.ztcomic"))).oid.isEmpty());
        QVERIFY(!ZTAppController::resolveSearchStub(dir.filePath(QStringLiteral("x.ztbooklib"))).isStub);
        QVERIFY(
            ZTAppController::shouldSwallowError(QStringLiteral("The file item.ztmusic could not be opened")));
        QVERIFY(!ZTAppController::shouldSwallowError(
            QStringLiteral("The file lib.ztmusiclib could not be opened")));
    }

    void cleanUpRemovesStagingAndStaleStubFolders()
    {
        const QString staging = ZTManagedObjectContext::stagingRootPath() + QStringLiteral("/session/x.png");
        writeFile(staging, "x");
        const QString stubs = ZTAppController::stubCacheFolder();
        QTemporaryDir libraries;
        const QString living = libraries.filePath(QStringLiteral("alive.ztbooklib"));
        QVERIFY(QDir().mkpath(living));
        QVERIFY(ZTPropertyList::writeFile(stubs + QStringLiteral("/alive/document.xml"),
                                          QVariantMap{{QStringLiteral("document"), living}},
                                          ZTPropertyList::Format::Xml) ||
                (QDir().mkpath(stubs + QStringLiteral("/alive")) &&
                 ZTPropertyList::writeFile(stubs + QStringLiteral("/alive/document.xml"),
                                           QVariantMap{{QStringLiteral("document"), living}},
                                           ZTPropertyList::Format::Xml)));
        QDir().mkpath(stubs + QStringLiteral("/gone"));
        ZTPropertyList::writeFile(
            stubs + QStringLiteral("/gone/document.xml"),
            QVariantMap{{QStringLiteral("document"), libraries.filePath(QStringLiteral("no.ztbooklib"))}},
            ZTPropertyList::Format::Xml);
        writeFile(stubs + QStringLiteral("/unreadable/document.xml"), "not a property list");
        writeFile(stubs + QStringLiteral("/bare/item.ztbook"), "<oid>x</oid>");
        ZTAppController::cleanTemporaryFolders();
        QVERIFY(!QFileInfo::exists(staging));
        QVERIFY(QFileInfo::exists(stubs + QStringLiteral("/alive")));
        QVERIFY(!QFileInfo::exists(stubs + QStringLiteral("/gone")));
        QVERIFY(QFileInfo::exists(stubs + QStringLiteral("/unreadable")));
        QVERIFY(!QFileInfo::exists(stubs + QStringLiteral("/bare")));
    }
};

ZT_TEST_MAIN(TestAppController)
#include "tst_appcontroller.moc"
