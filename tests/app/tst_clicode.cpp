#include "support/ZTTestMain.h"
#include "support/ZTTestSupport.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTest>

// Runs the built zettary-cli's "code" command end to end.
class TestCliCode : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void printsTheCode_data();
    void printsTheCode();
    void noCodeExitsWithOne();
    void badArgumentsExitWithTwo_data();
    void badArgumentsExitWithTwo();

private:
    struct Run {
        int exitCode = -1;
        QByteArray out;
        QByteArray err;
    };
    Run run(const QStringList &args);
    QTemporaryDir m_dir;
};

TestCliCode::Run TestCliCode::run(const QStringList &args)
{
    QProcess process;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(QStringLiteral("ZETTARY_SETTINGS_FILE"), m_dir.filePath(QStringLiteral("settings.conf")));
    process.setProcessEnvironment(env);
    process.start(ZTTestSupport::cliPath(), args);
    if (!process.waitForFinished(30000)) {
        process.kill();
        process.waitForFinished();
    }
    return {process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1,
            process.readAllStandardOutput(), process.readAllStandardError()};
}

void TestCliCode::initTestCase()
{
    QVERIFY(m_dir.isValid());
    QVERIFY2(QFileInfo::exists(ZTTestSupport::cliPath()), qPrintable(ZTTestSupport::cliPath()));
}

void TestCliCode::printsTheCode_data()
{
    QTest::addColumn<QStringList>("args");
    QTest::addColumn<QString>("key");
    QTest::addColumn<QString>("value");
    QTest::newRow("book by default") << QStringList{"code", "ISBN 978-0-306-40615-7"} << "isbn"
                                     << "0306406152";
    QTest::newRow("ASINs count as ISBNs") << QStringList{"code", "B00005JNS8"} << "isbn"
                                          << "B00005JNS8";
    QTest::newRow("LCCN") << QStringList{"code", "n78-890351", "--kind", "book"} << "lccn"
                          << "n78-890351";
    QTest::newRow("music") << QStringList{"code", "036000291452", "--kind", "music"} << "upc"
                           << "036000291452";
    QTest::newRow("movie ASIN") << QStringList{"code", "--kind=movie", "B00005JNS8"} << "asin"
                                << "B00005JNS8";
    QTest::newRow("comic") << QStringList{"code", "c123", "--kind=comic"} << "cbdbn"
                           << "123";
    // CueCat text for 9780306406157 (each digit XOR 67 in the scanner's base64).
    QTest::newRow("CueCat") << QStringList{"code", ".C3nZC3nZC3nYCxP2Dq.cGen.ENr7C3bZDxDZDxj2Da."} << "isbn"
                            << "0306406152";
}

void TestCliCode::printsTheCode()
{
    QFETCH(QStringList, args);
    QFETCH(QString, key);
    QFETCH(QString, value);
    const Run r = run(args);
    QCOMPARE(r.exitCode, 0);
    QJsonParseError error;
    const QJsonDocument json = QJsonDocument::fromJson(r.out, &error);
    QCOMPARE(error.error, QJsonParseError::NoError);
    QCOMPARE(json.object(), QJsonObject({{key, value}}));
}

void TestCliCode::noCodeExitsWithOne()
{
    const Run r = run({QStringLiteral("code"), QStringLiteral("not a code"), QStringLiteral("--kind"),
                       QStringLiteral("comic")});
    QCOMPARE(r.exitCode, 1);
    QVERIFY(r.out.isEmpty());
    QVERIFY2(r.err.contains("\"not a code\" is no comic code"), r.err.constData());
}

void TestCliCode::badArgumentsExitWithTwo_data()
{
    QTest::addColumn<QStringList>("args");
    QTest::addColumn<QByteArray>("message");
    QTest::newRow("no text") << QStringList{"code"} << QByteArray("one TEXT argument");
    QTest::newRow("two texts") << QStringList{"code", "a", "b"} << QByteArray("one TEXT argument");
    QTest::newRow("unknown kind") << QStringList{"code", "1", "--kind", "dvd"}
                                  << QByteArray("unknown kind \"dvd\"");
    QTest::newRow("kind without value")
        << QStringList{"code", "1", "--kind"} << QByteArray("--kind needs a value");
}

void TestCliCode::badArgumentsExitWithTwo()
{
    QFETCH(QStringList, args);
    QFETCH(QByteArray, message);
    const Run r = run(args);
    QCOMPARE(r.exitCode, 2);
    QVERIFY(r.out.isEmpty());
    QVERIFY2(r.err.contains(message), r.err.constData());
}

ZT_TEST_MAIN(TestCliCode)
#include "tst_clicode.moc"
