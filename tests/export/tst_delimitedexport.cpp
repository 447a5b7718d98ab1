// The delimited export and the export framework around it: columns, multiple
// values, quoting, line breaks, the list picker, and a reading by Python's csv
// module.
#include "export/ZTExportConfigurationController.h"
#include "export/ZTExportController.h"
#include "export/ZTListPickerController.h"
#include "library/ZTDocument.h"
#include "lists/ZTList.h"
#include "model/ZTDateBit.h"
#include "model/ZTItem.h"
#include "support/ZTTestLibrary.h"
#include "support/ZTTestMain.h"
#include "support/ZTTestSupport.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QLocale>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

class TestDelimitedExport : public QObject {
    Q_OBJECT

private:
    QTemporaryDir m_dir;

    static QString exportText(ZTDocument &document, const QStringList &keys,
                              ZTExportController::MultipleAttributes multiple,
                              ZTExportController::Format format = ZTExportController::Format::Tab)
    {
        ZTExportController exporter(&document);
        exporter.setAttributesToExport(keys);
        exporter.setExportMultipleAttributesOption(multiple);
        exporter.setExportFormat(format);
        exporter.setMultipleDelimiter(QStringLiteral("; "));
        exporter.setOids(document.mainList()->itemOids());
        return exporter.exportString();
    }

private Q_SLOTS:
    void initTestCase()
    {
        ZTTestSupport::useTemporarySettings(m_dir);
        QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
    }

    void withoutListsBothMultipleOptionsAgree()
    {
        QTemporaryDir dir;
        auto document = ZTTestLibrary::create(dir, ZTMediaKind::Book);
        document->addItemFromDictionary(
            {{"title", "A"}, {"authors", QStringList{"Ann", "Bo"}}, {"pages", 12}});
        const QStringList keys{"pages", "title"};
        QCOMPARE(exportText(*document, keys, ZTExportController::MultipleAttributes::SeparateColumns),
                 exportText(*document, keys, ZTExportController::MultipleAttributes::SingleColumn));
        // The columns follow the export table, whatever order they were ticked in.
        QCOMPARE(exportText(*document, keys, ZTExportController::MultipleAttributes::SingleColumn),
                 QStringLiteral("Title\tPages\nA\t12\n"));
    }

    void separateColumnsAreNumberedByTheWidestItem()
    {
        QTemporaryDir dir;
        auto document = ZTTestLibrary::create(dir, ZTMediaKind::Book);
        document->addItemFromDictionary({{"title", "One"}, {"authors", QStringList{"Ann"}}});
        QCOMPARE(exportText(*document, {"title", "authors"},
                            ZTExportController::MultipleAttributes::SeparateColumns),
                 QStringLiteral("Title\tAuthors\nOne\tAnn\n"));
        document->addItemFromDictionary({{"title", "Two"}, {"authors", QStringList{"Bo", "Cy"}}});
        QCOMPARE(exportText(*document, {"title", "authors"},
                            ZTExportController::MultipleAttributes::SeparateColumns),
                 QStringLiteral("Title\tAuthors1\tAuthors2\nTwo\tBo\tCy\nOne\tAnn\t\n"));
        QCOMPARE(
            exportText(*document, {"title", "authors"}, ZTExportController::MultipleAttributes::SingleColumn),
            QStringLiteral("Title\tAuthors\nTwo\tBo; Cy\nOne\tAnn\n"));
    }

    void quoting_data()
    {
        QTest::addColumn<QString>("value");
        QTest::addColumn<QString>("delimiter");
        QTest::addColumn<QString>("cell");
        QTest::newRow("plain") << "plain"
                               << ","
                               << "plain";
        QTest::newRow("comma in comma file") << "a, b"
                                             << ","
                                             << "\"a, b\"";
        QTest::newRow("comma in tab file") << "a, b"
                                           << "\t"
                                           << "a, b";
        QTest::newRow("tab in tab file") << "a\tb"
                                         << "\t"
                                         << "\"a\tb\"";
        QTest::newRow("quote") << "say \"hi\""
                               << "\t"
                               << "\"say \"\"hi\"\"\"";
        QTest::newRow("line feed") << "one\ntwo"
                                   << ","
                                   << "\"one\ntwo\"";
        QTest::newRow("carriage return") << "one\rtwo"
                                         << ","
                                         << "\"one\rtwo\"";
        QTest::newRow("line separator")
            << QStringLiteral("one\u2028two") << "," << QStringLiteral("\"one\u2028two\"");
        QTest::newRow("empty") << ""
                               << ","
                               << "";
    }

    void quoting()
    {
        QFETCH(QString, value);
        QFETCH(QString, delimiter);
        QFETCH(QString, cell);
        QCOMPARE(ZTExportController::quotedValue(value, delimiter.at(0)), cell);
    }

    void theMultipleDelimiterForcesNoQuotes()
    {
        QTemporaryDir dir;
        auto document = ZTTestLibrary::create(dir, ZTMediaKind::Book);
        document->addItemFromDictionary({{"title", "x"}, {"keywords", QStringList{"a", "b"}}});
        QCOMPARE(exportText(*document, {"keywords"}, ZTExportController::MultipleAttributes::SingleColumn,
                            ZTExportController::Format::Comma),
                 QStringLiteral("Keywords\na; b\n"));
    }

    void valuesByType()
    {
        QTemporaryDir dir;
        auto document = ZTTestLibrary::create(dir, ZTMediaKind::Book);
        document->addItemFromDictionary({{"title", "Typed"},
                                         {"price", 1234.5},
                                         {"rating", 3},
                                         {"signedFlag", true},
                                         {"ownedFlag", false},
                                         {"datePublished", QDateTime(QDate(1999, 5, 17), QTime(0, 0))},
                                         {"datePublishedBitFlag", int(ZTDateBit::YearMonth)},
                                         {"dateObtained", QDateTime(QDate(2003, 2, 1), QTime(0, 0))}});
        document->addItemFromDictionary({{"title", "Blank"}});
        const QString text = exportText(*document,
                                        {"title", "price", "rating", "signedFlag", "ownedFlag",
                                         "datePublished", "dateObtained", "series"},
                                        ZTExportController::MultipleAttributes::SeparateColumns,
                                        ZTExportController::Format::Comma);
        const QStringList lines = text.split('\n');
        QCOMPARE(lines.size(), 4);
        // Columns in the export table's order; dates by the locale, a partial
        // one only as far as it is known.
        QCOMPARE(lines.at(0),
                 QStringLiteral("Title,Price,Owned,Signed,Date Obtained,Rating,Series,Date Published"));
        QCOMPARE(lines.at(2), QStringLiteral("Typed,\"$1,234.50\",No,Yes,2/1/2003,3,,5/1999"));
        QCOMPARE(lines.at(1), QStringLiteral("Blank,,Yes,No,,0,,"));
        QCOMPARE(lines.at(3), QString());
    }

    void lineBreaksEndEveryLine_data()
    {
        QTest::addColumn<int>("option");
        QTest::addColumn<QString>("lineBreak");
        QTest::newRow("LF") << 0 << "\n";
        QTest::newRow("CR") << 1 << "\r";
        QTest::newRow("CRLF") << 2 << "\r\n";
    }

    void lineBreaksEndEveryLine()
    {
        QFETCH(int, option);
        QFETCH(QString, lineBreak);
        QTemporaryDir dir;
        auto document = ZTTestLibrary::create(dir, ZTMediaKind::Comic);
        document->addItemFromDictionary({{"title", "c"}});
        ZTExportController exporter(document.get());
        exporter.setLineBreakOption(ZTExportController::LineBreak(option));
        exporter.setAttributesToExport({"title"});
        exporter.setOids(document->mainList()->itemOids() + QStringList{"no-such-oid"});
        // An oid without an item gives an empty line.
        QCOMPARE(exporter.exportString(), "Title" + lineBreak + "c" + lineBreak + lineBreak);
        exporter.reset();
        QCOMPARE(exporter.lineBreak(), QStringLiteral("\n"));
    }

    void attributesLeaveOutTheCover()
    {
        QTemporaryDir dir;
        auto document = ZTTestLibrary::create(dir, ZTMediaKind::Movie);
        ZTExportController exporter(document.get());
        const QStringList keys = exporter.attributes();
        QVERIFY(!keys.contains("cover"));
        QVERIFY(keys.contains("actors"));
        QCOMPARE(keys.first(), QStringLiteral("title"));
        QVERIFY(!ZTExportController::exportKeysDiffer({"a", "b"}, {"b", "a"}));
        QVERIFY(ZTExportController::exportKeysDiffer({"a", "b"}, {"a"}));
    }

    void listPickerUnitesTickedLists()
    {
        QTemporaryDir dir;
        auto document = ZTTestLibrary::create(dir, ZTMediaKind::Book);
        QStringList oids;
        for (const char *title : {"a", "b", "c", "d"})
            oids.prepend(document->addItemFromDictionary({{"title", title}})->oid());
        ZTList *first = ZTList::createInManagedObjectContext(document->managedObjectContext(), 1);
        first->setName("First");
        first->setItemOids({oids.at(2), oids.at(0)});
        ZTList *second = ZTList::createInManagedObjectContext(document->managedObjectContext(), 2);
        second->setName("Second");
        second->setItemOids({oids.at(0), oids.at(3)});
        document->mutableItemLists() << first << second;

        ZTListPickerController picker(document.get());
        QCOMPARE(picker.allTitle(), QStringLiteral("All Books"));
        QCOMPARE(picker.itemOids(), oids);
        QVERIFY(picker.exportAll());
        picker.setChoice(ZTListPickerController::Choice::SelectedLists);
        QCOMPARE(picker.numberOfItemsSelected(), 0);
        picker.selectAll();
        QCOMPARE(picker.itemOids(), (QStringList{oids.at(2), oids.at(0), oids.at(3)}));
        picker.selectNone();
        QVERIFY(picker.tickListNamed("Second"));
        QVERIFY(!picker.tickListNamed("Third"));
        QCOMPARE(picker.itemOids(), (QStringList{oids.at(0), oids.at(3)}));
        QCOMPARE(picker.lists(), QList<ZTList *>{second});
    }

    void configurationPerKind_data()
    {
        QTest::addColumn<int>("kind");
        QTest::addColumn<QStringList>("titles");
        QTest::newRow("book") << int(ZTMediaKind::Book)
                              << QStringList{"Cover Images", "Text file", "HTML",
                                             "XML",          "BibTeX",    "HTML (iPhone/iPod touch)",
                                             "MLA"};
        QTest::newRow("album") << int(ZTMediaKind::Album)
                               << QStringList{"Cover Images", "Text file", "HTML", "XML",
                                              "HTML (iPhone/iPod touch)"};
    }

    void configurationPerKind()
    {
        QFETCH(int, kind);
        QFETCH(QStringList, titles);
        QTemporaryDir dir;
        auto document = ZTTestLibrary::create(dir, ZTMediaKind(kind));
        ZTExportConfigurationController configuration(document.get());
        QStringList got;
        for (const ZTExportFormatEntry &entry : configuration.entries())
            got << entry.title;
        QCOMPARE(got, titles);
        ZTListPickerController picker(document.get());
        configuration.setListPickerController(&picker);
        configuration.reset();
        QCOMPARE(configuration.state(), 0);
        QCOMPARE(configuration.choice(), -1);
        QVERIFY(!configuration.controllerForClassNamed(QString()));
        // Nothing to export: the button stays disabled.
        QVERIFY(!configuration.canExport());
        QVERIFY(!configuration.exportChoice(1));
        document->addItemFromDictionary({{"title", "x"}});
        QVERIFY(!configuration.exportChoice(0)); // cover images are not built yet
        QVERIFY(configuration.exportChoice(1));
        QCOMPARE(configuration.selectorString(), QStringLiteral("exportItemsToFile"));
        QVERIFY(configuration.controllerForClassNamed("ZTExportToXMLController"));
        const QString path = dir.filePath("out.txt");
        static_cast<ZTExportController *>(configuration.chosenController())->setAttributesToExport({"title"});
        QVERIFY(configuration.performExport(path));
        QFile file(path);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(file.readAll(), QByteArray("Title\nx\n"));
    }

    void pythonCsvReadsOurFiles_data()
    {
        QTest::addColumn<int>("format");
        QTest::addColumn<int>("lineBreak");
        QTest::newRow("comma, LF") << 1 << 0;
        QTest::newRow("comma, CRLF") << 1 << 2;
        QTest::newRow("tab, LF") << 0 << 0;
    }

    void pythonCsvReadsOurFiles()
    {
        QFETCH(int, format);
        QFETCH(int, lineBreak);
        const QString python = QStandardPaths::findExecutable("python3");
        if (python.isEmpty())
            QSKIP("python3 is not installed, so no other reader can check the file");
        QTemporaryDir dir;
        auto document = ZTTestLibrary::create(dir, ZTMediaKind::Book);
        const QStringList titles{"Plain",      "Comma, inside",  "Say \"hi\"",
                                 "Two\nlines", "Tab\there",      QStringLiteral("Ünïcödé ✓"),
                                 "\"Quoted\"", "Trailing space "};
        for (const QString &title : titles)
            document->addItemFromDictionary({{"title", title}, {"keywords", QStringList{"k,1", "k\"2"}}});
        ZTExportController exporter(document.get());
        exporter.setExportFormat(ZTExportController::Format(format));
        exporter.setLineBreakOption(ZTExportController::LineBreak(lineBreak));
        exporter.setAttributesToExport({"title", "keywords"});
        exporter.setOids(document->mainList()->itemOids());
        const QString path = dir.filePath("out.txt");
        QVERIFY(exporter.writeToPath(path));

        QProcess process;
        process.start(python, {"-c",
                               "import csv, json, sys\n"
                               "with open(sys.argv[1], newline='', encoding='utf-8') as f:\n"
                               "    print(json.dumps(list(csv.reader(f, delimiter=sys.argv[2]))))\n",
                               path, format == 1 ? "," : "\t"});
        QVERIFY(process.waitForFinished(30000));
        QCOMPARE(process.exitCode(), 0);
        const QJsonArray rows = QJsonDocument::fromJson(process.readAllStandardOutput()).array();
        QCOMPARE(rows.size(), titles.size() + 1);
        QCOMPARE(rows.at(0).toArray().toVariantList(), (QVariantList{"Title", "Keywords1", "Keywords2"}));
        QStringList readTitles;
        for (qsizetype i = 1; i < rows.size(); ++i) {
            const QJsonArray row = rows.at(i).toArray();
            QCOMPARE(row.size(), 3);
            // A line break inside a cell is written as it stands; with CRLF line
            // ends the cell's own LF stays an LF.
            readTitles.prepend(row.at(0).toString());
            QCOMPARE(row.at(1).toString(), QStringLiteral("k,1"));
            QCOMPARE(row.at(2).toString(), QStringLiteral("k\"2"));
        }
        QCOMPARE(readTitles, titles);
    }
};

ZT_TEST_MAIN(TestDelimitedExport)
#include "tst_delimitedexport.moc"
