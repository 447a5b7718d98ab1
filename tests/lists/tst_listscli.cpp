// The list commands of zettary-cli, run as a person would run them on a real library.
#include "support/ZTTestMain.h"
#include "support/ZTTestSupport.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

namespace {
struct Run {
    int code = -1;
    QString out;
    QString err;
};
} // namespace

class TestListsCli : public QObject {
    Q_OBJECT

private slots:
    void initTestCase();
    void listsAndSmartListsEndToEnd();
    void badArgumentsLeaveTheLibraryAlone_data();
    void badArgumentsLeaveTheLibraryAlone();

private:
    Run cli(const QStringList &args, const QByteArray &input = {}) const;
    QString newLibrary(const QString &name) const;
    QStringList addItems(const QString &library, const QByteArray &json) const;
    QTemporaryDir m_dir;
};

void TestListsCli::initTestCase()
{
    QVERIFY(m_dir.isValid());
}

Run TestListsCli::cli(const QStringList &args, const QByteArray &input) const
{
    QProcess process;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert("ZETTARY_SETTINGS_FILE", m_dir.filePath("settings.ini"));
    process.setProcessEnvironment(env);
    process.start(ZTTestSupport::cliPath(), args);
    if (!input.isEmpty())
        process.write(input);
    process.closeWriteChannel();
    Run run;
    if (!process.waitForFinished(60000))
        return run;
    run.code = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
    run.out = QString::fromUtf8(process.readAllStandardOutput());
    run.err = QString::fromUtf8(process.readAllStandardError());
    return run;
}

QString TestListsCli::newLibrary(const QString &name) const
{
    const Run made = cli({"new", m_dir.filePath(name), "--kind", "book"});
    return made.code == 0 ? made.out.trimmed() : QString();
}

QStringList TestListsCli::addItems(const QString &library, const QByteArray &json) const
{
    const Run added = cli({"add", library, "-"}, json);
    return added.code == 0 ? added.out.split('\n', Qt::SkipEmptyParts) : QStringList();
}

void TestListsCli::listsAndSmartListsEndToEnd()
{
    const QString library = newLibrary("shelf");
    QVERIFY(!library.isEmpty());
    const QStringList oids = addItems(library, R"([
        {"title": "The Hobbit", "authors": ["Ann Tolkien"], "rating": 5, "price": 7.5},
        {"title": "Dune", "authors": ["Frank Herbert"], "rating": 2},
        {"title": "Hobbit Companion", "authors": ["Bob Foster", "Ann Tolkien"], "rating": 4}
    ])");
    QCOMPARE(oids.size(), 3);

    Run run = cli({"list-add", library, "Favourites", oids[2], oids[0], oids[2]});
    QCOMPARE(run.code, 0);
    QCOMPARE(run.out.trimmed(), QStringLiteral("1\t2"));

    run = cli({"smart-add", library, "Ann", "--all", "--rule", "Author|is|ann tolkien", "--rule",
               "Rating|is in the range|4..5"});
    QVERIFY2(run.code == 0, qPrintable(run.err));
    QCOMPARE(run.out.trimmed(), QStringLiteral("2\t2"));
    run = cli({"smart-add", library, "Cheap or Dune", "--any", "--rule", "Price|is less than|1", "--rule",
               "Title|starts with|dune"});
    QVERIFY2(run.code == 0, qPrintable(run.err));
    run = cli({"smart-add", library, "Recent", "--rule", "Date Added|is in the last|2 weeks", "--rule",
               "Signed|is not set"});
    QVERIFY2(run.code == 0, qPrintable(run.err));

    run = cli({"lists", library, "--json"});
    QCOMPARE(run.code, 0);
    const QJsonArray rows = QJsonDocument::fromJson(run.out.toUtf8()).array();
    QCOMPARE(rows.size(), 5);
    QCOMPARE(rows[0].toObject().value("kind").toString(), QStringLiteral("library"));
    QCOMPARE(rows[0].toObject().value("count").toInt(), 3);
    QCOMPARE(rows[1].toObject().value("name").toString(), QStringLiteral("Favourites"));
    QCOMPARE(rows[2].toObject().value("kind").toString(), QStringLiteral("smart"));
    QCOMPARE(rows[3].toObject().value("count").toInt(), 2); // the two without a price
    QCOMPARE(rows[4].toObject().value("count").toInt(), 3);

    run = cli({"list-show", library, "Favourites"});
    QCOMPARE(run.code, 0);
    QCOMPARE(run.out.split('\n', Qt::SkipEmptyParts), QStringList({"2 books", oids[2], oids[0]}));

    run = cli({"list-show", library, "Ann"});
    QCOMPARE(run.code, 0);
    const QStringList lines = run.out.split('\n', Qt::SkipEmptyParts);
    QCOMPARE(lines.mid(0, 2),
             QStringList({"2 books", "Author is \"ann tolkien\" and Rating is in the range 4 to 5"}));
    // Members in the main list's order: the newest first.
    QCOMPARE(lines.mid(2), QStringList({oids[2], oids[0]}));

    run = cli({"list-show", library, "Recent", "--json"});
    QCOMPARE(run.code, 0);
    const QJsonObject recent = QJsonDocument::fromJson(run.out.toUtf8()).object();
    QCOMPARE(recent.value("description").toString(),
             QStringLiteral("3 books\nDate Added is in the last 2 weeks and Signed is not set"));
    QCOMPARE(recent.value("oids").toArray().size(), 3);

    // A smart list follows items changed later.
    run = cli({"set", library, oids[1], "authors=[\"Ann Tolkien\"]", "rating=4"});
    QCOMPARE(run.code, 0);
    run = cli({"add", library, "-"}, R"({"title": "New Ann", "authors": ["Ann Tolkien"], "rating": 4})");
    QCOMPARE(run.code, 0);
    const QString newest = run.out.trimmed();
    run = cli({"list-show", library, "Ann"});
    QCOMPARE(run.out.split('\n', Qt::SkipEmptyParts).mid(2),
             QStringList({newest, oids[1], oids[2], oids[0]}));
}

void TestListsCli::badArgumentsLeaveTheLibraryAlone_data()
{
    QTest::addColumn<QStringList>("args");
    QTest::addColumn<QString>("message");
    QTest::newRow("unknown attribute")
        << QStringList{"smart-add", "@", "x", "--rule", "Colour|is|red"} << "no rule attribute \"Colour\"";
    QTest::newRow("operator of another type")
        << QStringList{"smart-add", "@", "x", "--rule", "Pages|contains|3"}
        << "\"contains\" is no operator for Pages";
    QTest::newRow("no number") << QStringList{"smart-add", "@", "x", "--rule", "Pages|is|many"}
                               << "\"many\" is not a number";
    QTest::newRow("bad range") << QStringList{"smart-add", "@", "x", "--rule", "Pages|is in the range|3-4"}
                               << "a range is written FROM..TO";
    QTest::newRow("bad date") << QStringList{"smart-add", "@", "x", "--rule", "Date Read|is|02-30-2001"}
                              << "is not a date";
    QTest::newRow("bad period") << QStringList{"smart-add", "@", "x", "--rule",
                                               "Date Read|is in the last|soon"}
                                << "a period is a number and days";
    QTest::newRow("too many stars") << QStringList{"smart-add", "@", "x", "--rule", "Rating|is|7"}
                                    << "a rating is 0 to 5 stars";
    QTest::newRow("yes/no with value")
        << QStringList{"smart-add", "@", "x", "--rule", "Signed|is set|yes"} << "Signed takes no value";
    QTest::newRow("no value") << QStringList{"smart-add", "@", "x", "--rule", "Title|contains"}
                              << "needs a value";
    QTest::newRow("no rules") << QStringList{"smart-add", "@", "x"} << "needs at least one --rule";
    QTest::newRow("all and any") << QStringList{"smart-add", "@",      "x",         "--all",
                                                "--any",     "--rule", "Title|is|a"}
                                 << "not both";
    QTest::newRow("blank smart name")
        << QStringList{"smart-add", "@", " ", "--rule", "Title|is|a"} << "not blank";
    QTest::newRow("blank list name") << QStringList{"list-add", "@", "  "} << "not blank";
    QTest::newRow("unknown oid") << QStringList{"list-add", "@", "x", "no-such-oid"} << "no item with oid";
    QTest::newRow("unknown list") << QStringList{"list-show", "@", "Nowhere"} << "no list named \"Nowhere\"";
    QTest::newRow("not a library") << QStringList{"lists", "/nonexistent/x.ztbooklib"} << "";
}

void TestListsCli::badArgumentsLeaveTheLibraryAlone()
{
    QFETCH(QStringList, args);
    QFETCH(QString, message);
    static const QString library = newLibrary("untouched");
    QVERIFY(!library.isEmpty());
    const QString store = QDir(library).filePath("data.sql");
    QFile before(store);
    QVERIFY(before.open(QIODevice::ReadOnly));
    const QByteArray bytes = before.readAll();
    args.replaceInStrings(QRegularExpression("^@$"), library);
    const Run run = cli(args);
    QCOMPARE(run.code, 2);
    QVERIFY2(run.err.contains(message), qPrintable(run.err));
    QVERIFY(run.err.count('\n') == 1);
    QFile after(store);
    QVERIFY(after.open(QIODevice::ReadOnly));
    QCOMPARE(after.readAll(), bytes);
}

ZT_TEST_MAIN(TestListsCli)
#include "tst_listscli.moc"
