// A library must survive its program being killed at any moment of a save:
// a child process saves in a loop and is killed at random times; each time the
// library must reopen whole, in its old or its new state.
#include "library/ZTDocument.h"
#include "lists/ZTList.h"
#include "model/ZTItem.h"
#include "store/ZTManagedObjectContext.h"
#include "support/ZTLibraryFixture.h"
#include "support/ZTTestMain.h"
#include "support/ZTTestSupport.h"

#include <QProcess>
#include <QRandomGenerator>
#include <QtTest>

#include <csignal>

namespace {
const char *s_childVariable = "ZT_CRASH_CHILD_LIBRARY";

// The child: open, change, save, forever (until killed).
int runChild(const QString &path)
{
    auto document = ZTDocument::create(ZTMediaKind::Book);
    if (!document->readFromURL(path))
        return 3;
    for (int round = 0;; ++round) {
        ZTItem *item = document->addItemFromDictionary(
            {{QStringLiteral("title"), QStringLiteral("Round %1").arg(round)},
             {QStringLiteral("keywords"),
              QStringList{QStringLiteral("k%1").arg(round % 7), QStringLiteral("all")}},
             {QStringLiteral("authors"), QStringList{QStringLiteral("Author %1").arg(round % 5)}}});
        if (round % 3 == 0)
            item->replaceCover({}, zt_pngBytes(8, 8, 0x101010u * unsigned(round % 15)), {},
                               QStringLiteral("PNG"), true);
        const QStringList oids = document->mainList()->itemOids();
        if (oids.size() > 5) {
            // Change an older item and sometimes remove one, so saves also update and delete.
            document->itemForOid(oids.last())
                ->takeAttributesFromDictionary(
                    {{QStringLiteral("notes"), QStringLiteral("changed in round %1").arg(round)}});
            if (round % 4 == 0)
                document->removeItemsFromLibrary({oids[oids.size() / 2]});
        }
        if (!document->saveDocument())
            return 4;
        fputs("saved\n", stdout);
        fflush(stdout);
    }
}
} // namespace

class TestCrashSafety : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void killedSavesLeaveAWholeLibrary()
    {
        QTemporaryDir settings;
        ZTTestSupport::useTemporarySettings(settings);
        ZTLibraryFixture fixture;
        QVERIFY(fixture.isValid());
        QRandomGenerator rng(20261123);
        int previousCount = 0;
        for (int run = 0; run < 12; ++run) {
            QProcess child;
            QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
            env.insert(QLatin1String(s_childVariable), fixture.path());
            env.insert(QStringLiteral("ZETTARY_SETTINGS_FILE"),
                       settings.filePath(QStringLiteral("child.conf")));
            child.setProcessEnvironment(env);
            child.start(QCoreApplication::applicationFilePath(), {QStringLiteral("TestCrashSafety")});
            QVERIFY(child.waitForStarted());
            // Let it save a few times, then kill it somewhere inside a save.
            QVERIFY(child.waitForReadyRead(20000));
            QTest::qWait(int(rng.bounded(30, 400)));
            ::kill(pid_t(child.processId()), SIGKILL);
            QVERIFY(child.waitForFinished(10000));
            QCOMPARE(child.exitStatus(), QProcess::CrashExit);

            auto document = fixture.open();
            QVERIFY2(document, "the library no longer opens");
            ZTManagedObjectContext *context = document->managedObjectContext();
            const QStringList listed = document->mainList()->itemOids();
            const auto rows = context->fetch(QStringLiteral("ZTBook"));
            QCOMPARE(rows.size(), listed.size());
            for (const QString &oid : listed) {
                ZTItem *item = document->itemForOid(oid);
                QVERIFY2(item, "the main list names an item that is not stored");
                QVERIFY(item->title().startsWith(QLatin1String("Round ")));
                QCOMPARE(item->keywords().size(), 2);
                QCOMPARE(item->valueForKey(QStringLiteral("authors")).toStringList().size(), 1);
            }
            QVERIFY(rows.size() >= previousCount - 1);
            previousCount = int(rows.size());
        }
        QVERIFY(previousCount > 0);
    }
};

int runCrashSafety(int argc, char **argv)
{
    const QString childLibrary = qEnvironmentVariable(s_childVariable);
    if (!childLibrary.isEmpty())
        return runChild(childLibrary);
    TestCrashSafety test;
    return QTest::qExec(&test, argc, argv);
}
ZT_TEST_CUSTOM_MAIN(TestCrashSafety, Core, runCrashSafety)

#include "tst_crashsafety.moc"
