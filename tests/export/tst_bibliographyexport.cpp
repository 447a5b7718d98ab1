// The XML, BibTeX and MLA exports: each read back by a tool that knows the
// format (xmllint, bibtool) where one is installed, and MLA entries by rule.
#include "export/ZTBookCitation.h"
#include "export/ZTExportToBibtexController.h"
#include "export/ZTExportToMLAController.h"
#include "export/ZTExportToXMLController.h"
#include "library/ZTDocument.h"
#include "library/ZTItemXML.h"
#include "lists/ZTList.h"
#include "model/ZTBook.h"
#include "model/ZTDateBit.h"
#include "support/ZTTestLibrary.h"
#include "support/ZTTestMain.h"
#include "support/ZTTestSupport.h"

#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>
#include <QXmlStreamReader>

namespace {
const QString s_hostile = QStringLiteral("R&D <b>bold</b> ]]> \"quoted\" 'apos' \x01\x1f tab\t Ünïcödé 😀");
// What XML can carry of it: the two control characters are dropped.
const QString s_hostileInXml = QStringLiteral("R&D <b>bold</b> ]]> \"quoted\" 'apos'  tab\t Ünïcödé 😀");

QVariantMap person(const QString &name, const QString &role = QString())
{
    return {{"name", name}, {"role", role}};
}

struct ToolRun {
    int exitCode = -1;
    QByteArray out, err;
};

ToolRun run(const QString &program, const QStringList &arguments, const QByteArray &input = {})
{
    QProcess process;
    process.start(program, arguments);
    process.write(input);
    process.closeWriteChannel();
    process.waitForFinished(30000);
    return {process.exitCode(), process.readAllStandardOutput(), process.readAllStandardError()};
}
} // namespace

class TestBibliographyExport : public QObject {
    Q_OBJECT

private:
    QTemporaryDir m_dir;

private Q_SLOTS:
    void initTestCase() { ZTTestSupport::useTemporarySettings(m_dir); }

    void xmlOfEveryKindIsWellFormed_data()
    {
        QTest::addColumn<int>("kind");
        QTest::addColumn<QVariantMap>("dictionary");
        QTest::addColumn<QString>("listElement");
        QTest::newRow("book") << int(ZTMediaKind::Book)
                              << QVariantMap{{"authorRoleDicts",
                                              QVariantList{person(s_hostile, "ed."), person("Bo")}},
                                             {"isbn", "9780131103627"}}
                              << "<author role=\"ed.\">";
        QTest::newRow("album") << int(ZTMediaKind::Album)
                               << QVariantMap{{"artists", QStringList{s_hostile}},
                                              {"tracks", QStringList{"One"}}}
                               << "<track>One</track>";
        QTest::newRow("movie") << int(ZTMediaKind::Movie)
                               << QVariantMap{{"actorRoleDicts",
                                               QVariantList{person("Harrison Ford", s_hostile)}},
                                              {"duration", 121}}
                               << "<actor role=\"R&amp;D";
        QTest::newRow("comic") << int(ZTMediaKind::Comic)
                               << QVariantMap{{"artistRoleDicts", QVariantList{person("Kirby", "pencils")}},
                                              {"stories", QStringList{s_hostile}}}
                               << "<artist role=\"pencils\">Kirby</artist>";
    }

    void xmlOfEveryKindIsWellFormed()
    {
        QFETCH(int, kind);
        QFETCH(QVariantMap, dictionary);
        QFETCH(QString, listElement);
        QTemporaryDir dir;
        auto document = ZTTestLibrary::create(dir, ZTMediaKind(kind));
        dictionary.insert("title", s_hostile);
        dictionary.insert("keywords", QStringList{"a&b", "<c>"});
        dictionary.insert("price", 12.5);
        dictionary.insert("datePublished", QDateTime(QDate(1987, 6, 5), QTime(0, 0)));
        dictionary.insert("datePublishedBitFlag", int(ZTDateBit::YearMonth));
        ZTItem *item = document->addItemFromDictionary(dictionary);
        document->addItemFromDictionary({{"title", "Second"}});
        ZTExportToXMLController xml(document.get());
        xml.setOids(document->mainList()->itemOids() + QStringList{"missing"});
        const QString text = xml.exportString();
        const QString plural = ZTItemXML::xmlTagNamePlural(ZTMediaKind(kind));
        QVERIFY(text.startsWith("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<" + plural + ">\n<" +
                                item->xmlTagNameSingular() + ">\n"));
        QVERIFY(text.endsWith("</" + item->xmlTagNameSingular() + ">\n</" + plural + ">"));
        QVERIFY2(text.contains(listElement), qPrintable(text));
        QVERIFY(text.contains("     <datePublished>1987-06</datePublished>\n"));
        QVERIFY(text.contains("<price currency=\"USD\">12.50</price>"));

        // Our own reader: the title comes back as written, less what XML cannot hold.
        QXmlStreamReader reader(text);
        QStringList titles;
        while (!reader.atEnd()) {
            if (reader.readNext() == QXmlStreamReader::StartElement &&
                reader.name() == QLatin1String("title"))
                titles << reader.readElementText();
        }
        QVERIFY2(!reader.hasError(), qPrintable(reader.errorString()));
        QCOMPARE(titles, (QStringList{"Second", s_hostileInXml}));

        const QString xmllint = QStandardPaths::findExecutable("xmllint");
        if (xmllint.isEmpty())
            QSKIP("xmllint (libxml2-utils) is not installed, so no other parser can check the file");
        const QString path = dir.filePath("out.xml");
        QVERIFY(xml.writeToPath(path));
        const ToolRun lint = run(xmllint, {"--noout", path});
        QVERIFY2(lint.exitCode == 0, lint.err.constData());
        const ToolRun title = run(xmllint, {"--xpath", "string(/" + plural + "/*[2]/title)", path});
        QCOMPARE(QString::fromUtf8(title.out).chopped(title.out.endsWith('\n') ? 1 : 0), s_hostileInXml);
    }

    void bibtexRecordHasFieldsInOrder()
    {
        QTemporaryDir dir;
        auto document = ZTTestLibrary::create(dir, ZTMediaKind::Book);
        auto *book = static_cast<ZTBook *>(document->addItemFromDictionary(
            {{"title", "The Art of Computer Programming"},
             {"authorRoleDicts", QVariantList{person("Donald E. Knuth"), person("Ann Ed", "ed."),
                                              person("Tim Trans", "trans.")}},
             {"publisher", "Addison-Wesley"},
             {"datePublished", QDateTime(QDate(1968, 1, 1), QTime(0, 0))},
             {"volumeNumber", "1"},
             {"isbn", "0201038013"},
             {"pages", 634},
             {"placePublished", "Reading, Mass."},
             {"keywords", QStringList{"algorithms", "computing"}}}));
        QCOMPARE(ZTBookCitation::formatBibtex(*book),
                 QStringLiteral("@book {KnuthTrans:CompProg1968,\n"
                                "   title = {The Art of Computer Programming},\n"
                                "   author = {Donald E. Knuth and Tim Trans},\n"
                                "   editor = {Ann Ed},\n"
                                "   publisher = {Addison-Wesley},\n"
                                "   year = {1968},\n"
                                "   volume = {1},\n"
                                "   isbn = {0201038013},\n"
                                "   pages = {634},\n"
                                "   address = {Reading, Mass.},\n"
                                "   keywords = {algorithms,computing}}\n"));
        auto *bare = static_cast<ZTBook *>(document->addItemFromDictionary({{"title", "Anonymous"}}));
        const QString record = ZTBookCitation::formatBibtex(*bare);
        QVERIFY(!record.contains("author"));
        QCOMPARE(ZTBookCitation::formatBibtex(*static_cast<ZTBook *>(document->addItemFromDictionary({}))),
                 QStringLiteral("@book {book}\n"));
    }

    void balancedBraces_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("safe");
        QTest::newRow("balanced") << "a {B} c"
                                  << "a {B} c";
        QTest::newRow("open") << "a { b"
                              << "a  b";
        QTest::newRow("close first") << "} a {"
                                     << " a ";
        QTest::newRow("nested") << "{{x}"
                                << "{x}";
    }

    void balancedBraces()
    {
        QFETCH(QString, text);
        QFETCH(QString, safe);
        QCOMPARE(ZTBookCitation::balancedBraces(text), safe);
    }

    void bibtoolReadsOurFile()
    {
        QTemporaryDir dir;
        auto document = ZTTestLibrary::create(dir, ZTMediaKind::Book);
        // Two books with one key, braces out of balance and text TeX finds odd.
        for (int i = 0; i < 3; ++i)
            document->addItemFromDictionary(
                {{"title", "Same Title"}, {"authors", QStringList{"Ann Author"}}});
        document->addItemFromDictionary(
            {{"title", "Braces } { and 100% & $ # _ Ünï"}, {"authors", QStringList{"Zoë {Brace"}}});
        ZTExportToBibtexController bibtex(document.get());
        bibtex.setOids(document->mainList()->itemOids());
        const QString text = bibtex.exportString();
        QCOMPARE(text.count("@book {Author:SameTitl"), 3);
        QVERIFY(text.contains("@book {Author:SameTitla,") && text.contains("@book {Author:SameTitlb,"));

        const QString bibtool = QStandardPaths::findExecutable("bibtool");
        if (bibtool.isEmpty())
            QSKIP("bibtool is not installed, so no other reader can check the file");
        const ToolRun read = run(bibtool, {"-d"}, text.toUtf8());
        QCOMPARE(read.exitCode, 0);
        QVERIFY2(!read.err.contains("WARNING") && !read.err.contains("ERROR"), read.err.constData());
        QCOMPARE(read.out.count("@Book{"), 4);
        QVERIFY2(read.out.contains("Braces and 100% & $ # _"), read.out.constData());
    }

    void mlaNames_data()
    {
        QTest::addColumn<QStringList>("names");
        QTest::addColumn<QStringList>("roles");
        QTest::addColumn<QString>("locale");
        QTest::addColumn<QString>("text");
        QTest::newRow("one, inverted") << QStringList{"John Smith"} << QStringList{""} << "US"
                                       << "Smith, John";
        QTest::newRow("two") << QStringList{"John Smith", "Ann Lee"} << QStringList{"", ""} << "US"
                             << "Smith, John, and Ann Lee";
        QTest::newRow("three") << QStringList{"John Smith", "Ann Lee", "Bo Ray"} << QStringList{"", "", ""}
                               << "US"
                               << "Smith, John, Ann Lee, and Bo Ray";
        QTest::newRow("four") << QStringList{"John Smith", "Ann Lee", "Bo Ray", "Cy Dee"}
                              << QStringList{"", "", "", ""} << "US"
                              << "Smith, John, et al. ";
        QTest::newRow("corporate loses its article")
            << QStringList{"The Beatles"} << QStringList{"ent."} << "US"
            << "Beatles";
        QTest::newRow("corporate in French keeps it")
            << QStringList{"The Beatles"} << QStringList{"ent."} << "FR"
            << "The Beatles";
        QTest::newRow("none") << QStringList{} << QStringList{} << "US"
                              << "";
    }

    void mlaNames()
    {
        QFETCH(QStringList, names);
        QFETCH(QStringList, roles);
        QFETCH(QString, locale);
        QFETCH(QString, text);
        QCOMPARE(ZTBookCitation::mlaNames(names, roles, locale), text);
    }

    void mlaEntries_data()
    {
        QTest::addColumn<QVariantMap>("dictionary");
        QTest::addColumn<QString>("entry");
        QTest::newRow("full") << QVariantMap{{"title", "Dune"},
                                             {"authorRoleDicts", QVariantList{person("Frank Herbert"),
                                                                              person("Ann Lee", "trans.")}},
                                             {"series", "Dune Chronicles"},
                                             {"editionNumber", "2nd"},
                                             {"volumeNumber", "1"},
                                             {"placePublished", "New York"},
                                             {"publisher", "Ace"},
                                             {"datePublished", QDateTime(QDate(1990, 1, 1), QTime(0, 0))}}
                              << "Herbert, Frank. Dune. Trans. Lee, Ann. Dune Chronicles. 2nd ed. Vol. 1. "
                                 "New York: Ace, 1990.";
        QTest::newRow("no people, place or year")
            << QVariantMap{{"title", "Anonymous"}, {"publisher", "Self"}, {"editionNumber", "Third edition"}}
            << "Anonymous. Third edition. n.p.: Self, n.d.";
        QTest::newRow("four authors")
            << QVariantMap{{"title", "T"}, {"authors", QStringList{"A One", "B Two", "C Three", "D Four"}}}
            << "One, A, et al. T. n.p.: n.p., n.d.";
    }

    void mlaEntries()
    {
        QFETCH(QVariantMap, dictionary);
        QFETCH(QString, entry);
        QTemporaryDir dir;
        auto document = ZTTestLibrary::create(dir, ZTMediaKind::Book);
        auto *book = static_cast<ZTBook *>(document->addItemFromDictionary(dictionary));
        const ZTStyledText text = ZTBookCitation::formatMLA(*book);
        QCOMPARE(text.toPlainText(), entry);
        // The title alone is in italics.
        int italic = 0;
        for (const ZTStyledText::Run &run : text.runs())
            if (run.italic) {
                ++italic;
                QCOMPARE(run.text, dictionary.value("title").toString());
            }
        QCOMPARE(italic, 1);
    }

    void mlaFileForms()
    {
        QTemporaryDir dir;
        auto document = ZTTestLibrary::create(dir, ZTMediaKind::Book);
        document->addItemFromDictionary({{"title", "Café {x}"}, {"authors", QStringList{"Ann Lee"}}});
        document->addItemFromDictionary({{"title", "B"}});
        ZTExportToMLAController mla(document.get());
        mla.setOids(document->mainList()->itemOids());
        QCOMPARE(mla.exportString(),
                 QStringLiteral("B. n.p.: n.p., n.d.\nLee, Ann. Café {x}. n.p.: n.p., n.d.\n"));
        const QByteArray rtf = mla.exportData("out.rtf");
        QVERIFY(rtf.startsWith("{\\rtf1"));
        QVERIFY2(rtf.contains("{\\i Caf\\u233? \\{x\\}}"), rtf.constData());
        QVERIFY(rtf.contains("\\par"));
        const QString html = QString::fromUtf8(mla.exportData("out.HTML"));
        QVERIFY(html.contains("<i>Café {x}</i>"));
        QCOMPARE(mla.exportData("out.txt"), mla.exportString().toUtf8());
    }
};

ZT_TEST_MAIN(TestBibliographyExport)
#include "tst_bibliographyexport.moc"
