// zettary-cli's view, list and lending commands, run as a user would on a real library.
#include "support/ZTTestMain.h"
#include "support/ZTTestSupport.h"

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

class TestCliView : public QObject {
    Q_OBJECT

private:
    Run cli(const QStringList &args, const QByteArray &input = {})
    {
        QProcess process;
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert(QStringLiteral("ZETTARY_SETTINGS_FILE"), m_dir.filePath(QStringLiteral("settings.conf")));
        process.setProcessEnvironment(env);
        process.start(ZTTestSupport::cliPath(), args);
        if (!input.isEmpty())
            process.write(input);
        process.closeWriteChannel();
        process.waitForFinished(60000);
        return {process.exitCode(), QString::fromUtf8(process.readAllStandardOutput()),
                QString::fromUtf8(process.readAllStandardError())};
    }

    QStringList lines(const QString &text) const { return text.split(QLatin1Char('\n'), Qt::SkipEmptyParts); }

    QTemporaryDir m_dir;
    QString m_library;
    QStringList m_oids; // in the order added: Dune, Emma, Ulysses, Dune again

private Q_SLOTS:
    void initTestCase();
    void itemsInLibraryOrder();
    void itemsSearchFilterSortColumns();
    void itemsJson();
    void badArguments_data();
    void badArguments();
    void statsLine();
    void columnsListing();
    void lendAndReturn();
    void duplicatesAndUnlisted();
    void datesShowTheirKnownParts();
};

void TestCliView::datesShowTheirKnownParts()
{
    QTemporaryDir dir;
    Run made = cli({QStringLiteral("new"), dir.filePath(QStringLiteral("Dates")), QStringLiteral("--kind"),
                    QStringLiteral("book")});
    QCOMPARE(made.code, 0);
    const QString library = made.out.trimmed();
    Run added = cli({QStringLiteral("add"), library, QStringLiteral("-")},
                    R"({"title": "Partial", "datePublished": "1999-06-01", "datePublishedBitFlag": 2,
                        "dateUsed": "2020-03-05", "dateUsedBitFlag": 1, "dateObtained": "2021-07-08"})");
    QCOMPARE(added.code, 0);
    Run shown = cli({QStringLiteral("items"), library, QStringLiteral("--columns"),
                     QStringLiteral("datePublished,dateUsed,dateObtained")});
    QCOMPARE(shown.code, 0);
    QCOMPARE(shown.out.trimmed().section(QLatin1Char('\t'), 1), QStringLiteral("1999\t2020-03\t2021-07-08"));
    // The dictionary form keeps the whole date and its precision apart.
    Run got = cli({QStringLiteral("get"), library, lines(added.out).first()});
    QVERIFY(got.out.contains(QStringLiteral("\"datePublished\": \"1999-06-01\"")));
    QVERIFY(got.out.contains(QStringLiteral("\"datePublishedBitFlag\": 2")));
}

void TestCliView::initTestCase()
{
    QVERIFY(m_dir.isValid());
    const QString path = m_dir.filePath(QStringLiteral("Shelf"));
    Run made = cli({QStringLiteral("new"), path, QStringLiteral("--kind"), QStringLiteral("book")});
    QCOMPARE(made.code, 0);
    m_library = made.out.trimmed();
    const QByteArray books = R"([
      {"title": "Dune", "genre": "SF", "isbn": "0441013597", "pages": 600, "price": 9.5, "priceLocale": "USD", "rating": 5},
      {"title": "Emma", "genre": "Novel", "pages": 400, "price": 4, "priceLocale": "GBP", "keywords": ["classic"]},
      {"title": "Ulysses", "genre": "Novel", "pages": 700, "keywords": ["classic", "dublin"]},
      {"title": "Dune", "genre": "SF", "isbn": "0441013597", "pages": 600, "price": 10, "priceLocale": "USD"}
    ])";
    Run added = cli({QStringLiteral("add"), m_library, QStringLiteral("-")}, books);
    QCOMPARE(added.code, 0);
    m_oids = lines(added.out);
    QCOMPARE(m_oids.size(), 4);
}

void TestCliView::itemsInLibraryOrder()
{
    Run r = cli({QStringLiteral("items"), m_library});
    QCOMPARE(r.code, 0);
    QStringList titles;
    for (const QString &line : lines(r.out))
        titles << line.section(QLatin1Char('\t'), 1);
    QCOMPARE(titles.size(), 4);
    QCOMPARE(QSet<QString>(titles.begin(), titles.end()), (QSet<QString>{"Dune", "Emma", "Ulysses"}));
}

void TestCliView::itemsSearchFilterSortColumns()
{
    Run search = cli({QStringLiteral("items"), m_library, QStringLiteral("--search"), QStringLiteral("ULY")});
    QCOMPARE(search.code, 0);
    QCOMPARE(lines(search.out), QStringList{m_oids[2] + QStringLiteral("\tUlysses")});

    Run isbn = cli(
        {QStringLiteral("items"), m_library, QStringLiteral("--search"), QStringLiteral("9780441013593")});
    QCOMPARE(isbn.code, 0);
    QCOMPARE(lines(isbn.out).size(), 2);

    Run filtered =
        cli({QStringLiteral("items"), m_library, QStringLiteral("--filter"),
             QStringLiteral("Keyword=classic"), QStringLiteral("--sort"), QStringLiteral("pages:desc"),
             QStringLiteral("--columns"), QStringLiteral("title,pages,keywords")});
    QCOMPARE(filtered.code, 0);
    QCOMPARE(lines(filtered.out), (QStringList{m_oids[2] + QStringLiteral("\tUlysses\t700\tclassic; dublin"),
                                               m_oids[1] + QStringLiteral("\tEmma\t400\tclassic")}));

    Run sorted = cli({QStringLiteral("items"), m_library, QStringLiteral("--sort"),
                      QStringLiteral("genre,rating:desc"), QStringLiteral("--columns"),
                      QStringLiteral("title,rating")});
    QCOMPARE(sorted.code, 0);
    const QStringList rows = lines(sorted.out);
    QCOMPARE(rows.size(), 4);
    QCOMPARE(rows.last(), m_oids[3] + QStringLiteral("\tDune\t0")); // SF after Novel; rating 0 after 5
    QCOMPARE(rows.at(2), m_oids[0] + QStringLiteral("\tDune\t5"));
}

void TestCliView::itemsJson()
{
    Run r = cli({QStringLiteral("items"), m_library, QStringLiteral("--search"), QStringLiteral("emma"),
                 QStringLiteral("--columns"), QStringLiteral("title,keywords,signedFlag"),
                 QStringLiteral("--json")});
    QCOMPARE(r.code, 0);
    const QJsonArray rows = QJsonDocument::fromJson(r.out.toUtf8()).array();
    QCOMPARE(rows.size(), 1);
    const QJsonObject row = rows.first().toObject();
    QCOMPARE(row.value(QStringLiteral("oid")).toString(), m_oids[1]);
    QCOMPARE(row.value(QStringLiteral("keywords")).toArray().first().toString(), QStringLiteral("classic"));
    QCOMPARE(row.value(QStringLiteral("signedFlag")).toBool(true), false);
}

void TestCliView::badArguments_data()
{
    QTest::addColumn<QStringList>("args");
    QTest::newRow("no such list") << QStringList{"items", "LIB", "--list", "Nope"};
    QTest::newRow("filter without =") << QStringList{"items", "LIB", "--filter", "Genre"};
    QTest::newRow("unknown filter") << QStringList{"items", "LIB", "--filter", "Colour=red"};
    QTest::newRow("unknown column") << QStringList{"items", "LIB", "--columns", "title,colour"};
    QTest::newRow("bad sort order") << QStringList{"items", "LIB", "--sort", "title:sideways"};
    QTest::newRow("sort by cover") << QStringList{"items", "LIB", "--sort", "cover"};
    QTest::newRow("not a library") << QStringList{"stats", "/nonexistent/x.zettary"};
    QTest::newRow("lend without name") << QStringList{"lend", "LIB", "OID"};
    QTest::newRow("lend with bad date")
        << QStringList{"lend", "LIB", "OID", "--to", "Ann", "--due", "31/12/2024"};
    QTest::newRow("lend unknown oid") << QStringList{"lend", "LIB", "no-such-oid", "--to", "Ann"};
    QTest::newRow("return item not lent") << QStringList{"return", "LIB", "OID"};
    QTest::newRow("duplicates with two paths") << QStringList{"duplicates", "LIB", "LIB"};
}

void TestCliView::badArguments()
{
    QFETCH(QStringList, args);
    for (QString &a : args) {
        if (a == QLatin1String("LIB"))
            a = m_library;
        else if (a == QLatin1String("OID"))
            a = m_oids[1];
    }
    Run r = cli(args);
    QCOMPARE(r.code, 2);
    QVERIFY(r.err.startsWith(QStringLiteral("zettary-cli: ")));
    QCOMPARE(lines(r.err).size(), 1);
    // The library is untouched.
    Run info = cli({QStringLiteral("info"), m_library});
    QVERIFY(info.out.contains(QStringLiteral("items: 4")));
    QVERIFY(info.out.contains(QStringLiteral("lists: 0")));
}

void TestCliView::statsLine()
{
    Run r = cli({QStringLiteral("stats"), m_library});
    QCOMPARE(r.code, 0);
    QVERIFY2(r.out.startsWith(QStringLiteral("4 books, 2,300 pages, total value: ")), qPrintable(r.out));
    QVERIFY2(r.out.contains(QStringLiteral("$19.50")), qPrintable(r.out));
    QVERIFY2(r.out.contains(QStringLiteral(" + ")), qPrintable(r.out)); // two currencies, never summed
}

void TestCliView::columnsListing()
{
    Run r = cli({QStringLiteral("columns"), m_library});
    QCOMPARE(r.code, 0);
    QVERIFY(lines(r.out).contains(QStringLiteral("ISBN\tisbn")));
    QVERIFY(lines(r.out).contains(QStringLiteral("Title\ttitle")));
}

void TestCliView::lendAndReturn()
{
    Run lent = cli({QStringLiteral("lend"), m_library, m_oids[2], QStringLiteral("--to"),
                    QStringLiteral("Ann Lee"), QStringLiteral("--email"), QStringLiteral("ann@example.org"),
                    QStringLiteral("--due"), QStringLiteral("2000-01-31")});
    QCOMPARE(lent.code, 0);
    QVERIFY(lent.out.contains(QStringLiteral("Lent To Name: Ann Lee")));
    Run overdue =
        cli({QStringLiteral("items"), m_library, QStringLiteral("--filter"), QStringLiteral("Overdue=Yes"),
             QStringLiteral("--columns"), QStringLiteral("title,lentToName,dateDue")});
    QCOMPARE(lines(overdue.out), QStringList{m_oids[2] + QStringLiteral("\tUlysses\tAnn Lee\t2000-01-31")});
    Run byBorrower = cli(
        {QStringLiteral("items"), m_library, QStringLiteral("--filter"), QStringLiteral("Lent To=Lee, Ann")});
    QCOMPARE(lines(byBorrower.out).size(), 1);

    Run back = cli({QStringLiteral("return"), m_library, m_oids[2]});
    QCOMPARE(back.code, 0);
    Run none =
        cli({QStringLiteral("items"), m_library, QStringLiteral("--filter"), QStringLiteral("Lent Out=Yes")});
    QCOMPARE(none.code, 0);
    QVERIFY(none.out.trimmed().isEmpty());
}

void TestCliView::duplicatesAndUnlisted()
{
    Run dup = cli({QStringLiteral("duplicates"), m_library});
    QCOMPARE(dup.code, 0);
    QCOMPARE(dup.out.trimmed(), QStringLiteral("Duplicates: 2"));
    Run inList =
        cli({QStringLiteral("items"), m_library, QStringLiteral("--list"), QStringLiteral("Duplicates")});
    QSet<QString> listed;
    for (const QString &line : lines(inList.out))
        listed.insert(line.section(QLatin1Char('\t'), 0, 0));
    QCOMPARE(listed, (QSet<QString>{m_oids[0], m_oids[3]}));
    Run unlisted = cli({QStringLiteral("unlisted"), m_library});
    QCOMPARE(unlisted.code, 0);
    QCOMPARE(unlisted.out.trimmed(), QStringLiteral("Unlisted: 2"));
    Run stats =
        cli({QStringLiteral("stats"), m_library, QStringLiteral("--list"), QStringLiteral("Unlisted")});
    QVERIFY2(stats.out.startsWith(QStringLiteral("2 books, 1,100 pages")), qPrintable(stats.out));
}

ZT_TEST_MAIN(TestCliView)
#include "tst_cliview.moc"
