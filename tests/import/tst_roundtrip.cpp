// What goes out as delimited text comes back in: for every kind, an export of
// every column read back with the importer keeps each attribute the importer
// can take. The command line does the same end to end, and refuses bad files
// without touching the library.
#include "export/ZTExportController.h"
#include "import/ZTItemImportController.h"
#include "library/ZTAttributeTables.h"
#include "library/ZTDisplayDictionary.h"
#include "library/ZTDocument.h"
#include "lists/ZTList.h"
#include "model/ZTDateBit.h"
#include "model/ZTItem.h"
#include "support/ZTTestLibrary.h"
#include "support/ZTTestMain.h"
#include "support/ZTTestSupport.h"

#include <QLocale>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

namespace {
QDateTime day(int y, int m, int d)
{
    return QDateTime(QDate(y, m, d), QTime(0, 0));
}

QVariantMap richItem(ZTMediaKind kind)
{
    QVariantMap map{{"title", "Comma, \"quote\" and more"},
                    {"genre", "Genre"},
                    {"source", "Shop; street"},
                    {"copies", 3},
                    {"price", 1234.5},
                    {"pricePaid", 7.0},
                    {"notes", "line one\nline two"},
                    {"condition", "Good"},
                    {"productDescription", "Tab\tinside"},
                    {"keywords", QStringList{"alpha", "beta, gamma"}},
                    {"ownedFlag", false},
                    {"signedFlag", true},
                    {"location", "Shelf 2"},
                    {"locale", "GB"},
                    {"dateObtained", day(1999, 5, 17)},
                    {"rating", 4},
                    {"series", "Series"},
                    {"language", "English"},
                    {"originalLanguage", "German"},
                    {"format", "Paperback"},
                    {"usedFlag", true},
                    {"dateUsed", day(2010, 2, 3)},
                    {"datePublished", day(1987, 6, 1)},
                    {"datePublishedBitFlag", int(ZTDateBit::YearMonth)},
                    {"originalDatePublished", day(1950, 1, 1)},
                    {"originalDatePublishedBitFlag", int(ZTDateBit::Year)},
                    {"lentToEmail", "friend@example.org"},
                    {"dateLent", day(2024, 1, 2)},
                    {"dateDue", day(2030, 3, 4)}};
    switch (kind) {
    case ZTMediaKind::Book:
        map.insert({{"isbn", "9780131103627"},
                    {"lccn", "77012345"},
                    {"pages", 272},
                    {"publisher", "Prentice Hall"},
                    {"locSubjects", QStringList{"C (Computer program language)"}},
                    {"locClassification", "QA76.73"},
                    {"authors", QStringList{"Brian W. Kernighan", "Dennis M. Ritchie"}},
                    {"deweyClassNumber", "005.133"},
                    {"volumeNumber", "Vol. 2"},
                    {"editionNumber", "2nd"},
                    {"placePublished", "Englewood Cliffs"}});
        break;
    case ZTMediaKind::Album:
        map.insert({{"asin", "B000002UAL"},
                    {"upc", "077774644129"},
                    {"numberOfMedia", 2},
                    {"label", "Parlophone"},
                    {"tracks", QStringList{"Come Together", "Something", "Octopus's Garden"}},
                    {"artists", QStringList{"The Beatles"}}});
        break;
    case ZTMediaKind::Movie:
        map.insert({{"asin", "B00003CXCT"},
                    {"upc", "024543216986"},
                    {"directors", QStringList{"George Lucas"}},
                    {"studio", "Fox"},
                    {"aspectRatio", "2.35:1"},
                    {"audienceRating", "PG"},
                    {"duration", 121},
                    {"regionCode", "2"},
                    {"numberOfMedia", 1}});
        break;
    case ZTMediaKind::Comic:
        map.insert({{"cbdbn", "12345"},
                    {"gcdn", "67890"},
                    {"isbn", "9781401207526"},
                    {"upc", "76194120000100111"},
                    {"pages", 32},
                    {"publisher", "DC"},
                    {"issueNumber", 1},
                    {"grade", "VF+"},
                    {"stories", QStringList{"Origin"}},
                    {"issueCount", 12},
                    {"characters", QStringList{"Batman", "Robin"}},
                    {"artists", QStringList{"Bob Kane"}}});
        break;
    }
    return map;
}

// The import title for an export column title: numbered columns feed their
// attribute, and the one column whose label differs is named by hand.
QString importTitle(const QString &exportTitle, const QStringList &importable)
{
    if (exportTitle == QLatin1String("Orig. Language"))
        return QStringLiteral("Original Language");
    if (importable.contains(exportTitle))
        return exportTitle;
    QString base = exportTitle;
    base.remove(QRegularExpression(QStringLiteral("\\d+$")));
    return importable.contains(base) ? base : QString();
}

QVariant comparable(const QVariant &value)
{
    if (value.typeId() == QMetaType::QDateTime)
        return value.toDateTime().toLocalTime().date();
    // Line ends inside a cell come back as CR, as every line end of the file does.
    if (value.typeId() == QMetaType::QString)
        return value.toString().replace('\r', '\n');
    if (value.typeId() == QMetaType::Bool || value.typeId() == QMetaType::Int ||
        value.typeId() == QMetaType::LongLong || value.typeId() == QMetaType::Double)
        return value.toDouble();
    return value;
}

struct CliRun {
    int exitCode = -1;
    QString out, err;
};

CliRun cli(const QTemporaryDir &dir, const QStringList &arguments)
{
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("ZETTARY_SETTINGS_FILE", dir.filePath("settings.conf"));
    process.setProcessEnvironment(environment);
    process.start(ZTTestSupport::cliPath(), arguments);
    process.waitForFinished(60000);
    return {process.exitCode(), QString::fromUtf8(process.readAllStandardOutput()),
            QString::fromUtf8(process.readAllStandardError())};
}
} // namespace

class TestRoundTrip : public QObject {
    Q_OBJECT

private:
    QTemporaryDir m_dir;

private Q_SLOTS:
    void initTestCase()
    {
        ZTTestSupport::useTemporarySettings(m_dir);
        // Month first, as the first of the importer's date formats reads.
        QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
    }

    void everyKindKeepsItsAttributes_data()
    {
        QTest::addColumn<int>("kind");
        for (ZTMediaKind kind : ZTMediaKinds::all)
            QTest::newRow(qPrintable(ZTMediaKinds::cliName(kind))) << int(kind);
    }

    void everyKindKeepsItsAttributes()
    {
        QFETCH(int, kind);
        const ZTMediaKind mediaKind = ZTMediaKind(kind);
        QTemporaryDir dir;
        auto source = ZTTestLibrary::create(dir, mediaKind, "source");
        auto target = ZTTestLibrary::create(dir, mediaKind, "target");
        QVERIFY(source && target);
        ZTItem *original = source->addItemFromDictionary(richItem(mediaKind));
        source->addItemFromDictionary({{"title", "Plain"}});
        QVERIFY(original->isLentOut());

        ZTExportController exporter(source.get());
        exporter.setExportFormat(ZTExportController::Format::Comma);
        exporter.setAttributesToExport(exporter.attributes());
        exporter.setOids(source->mainList()->itemOids());
        const QString text = exporter.exportString();

        ZTItemImportController importer(target.get());
        importer.setFileContents(text);
        QCOMPARE(importer.fileProblem(), QString());
        const QStringList importable = importer.toColumns();
        for (int i = 0; i < importer.keyDicts().size(); ++i) {
            const QString title = importTitle(importer.keyDicts().at(i).fromColumn, importable);
            if (title.isEmpty())
                importer.keyDicts()[i].state = false;
            else
                importer.setToColumn(i, title);
        }
        int added = 0;
        QCOMPARE(importer.save(&added), ZTItemImportController::SaveResult::Imported);
        QCOMPARE(added, 2);
        // The rows come in in file order, each to the front: the order flips,
        // and the item exported last stands first again.
        const ZTItem *copy = target->allItems().first();
        QCOMPARE(copy->title(), original->title());

        const QHash<QString, QString> &keys = ZTDisplayDictionary::labelToKey(mediaKind);
        int compared = 0;
        for (const QString &title : importable) {
            const QString key = keys.value(title);
            if (key.isEmpty())
                continue;
            QCOMPARE(comparable(copy->valueForKey(key)), comparable(original->valueForKey(key)));
            const QString bitKey = key + QLatin1String("BitFlag");
            if (original->hasKey(bitKey))
                QCOMPARE(copy->valueForKey(bitKey).toInt(), original->valueForKey(bitKey).toInt());
            ++compared;
        }
        QVERIFY(compared >= 25);
        // The loan comes back without its name: no importable title carries it.
        QVERIFY(copy->isLentOut());
        QCOMPARE(copy->lentToEmail(), original->lentToEmail());
        QCOMPARE(copy->dateDue().toLocalTime().date(), QDate(2030, 3, 4));
        QCOMPARE(copy->dateLent().toLocalTime().date(), QDate(2024, 1, 2));
    }

    void cliExportsAndImports()
    {
        QTemporaryDir dir;
        auto source = ZTTestLibrary::create(dir, ZTMediaKind::Book, "source");
        source->addItemFromDictionary(
            {{"title", "Dune"}, {"authors", QStringList{"Frank Herbert", "Ann Lee"}}});
        source->addItemFromDictionary({{"title", "Emma, a novel"}, {"authors", QStringList{"Jane Austen"}}});
        QVERIFY(source->saveDocument());
        const QString sourcePath = source->documentPath();
        const QString csv = dir.filePath("books.csv");

        CliRun run = cli(dir, {"export", sourcePath, "--format", "csv", "--keys", "title,authors",
                               "--multiple", "single", "--delimiter", "|", csv});
        QVERIFY2(run.exitCode == 0, qPrintable(run.err));
        QFile file(csv);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(file.readAll(),
                 QByteArray("Title,Authors\n\"Emma, a novel\",Jane Austen\nDune,Frank Herbert|Ann Lee\n"));

        run = cli(dir, {"new", dir.filePath("target"), "--kind", "book"});
        QCOMPARE(run.exitCode, 0);
        const QString targetPath = run.out.trimmed();
        run = cli(dir, {"import", targetPath, csv, "--split", "Authors=|"});
        QVERIFY2(run.exitCode == 0, qPrintable(run.err));
        QVERIFY2(run.out.contains("Title -> Title\nAuthors -> Authors (split at \"|\")\nimported 2 item(s)"),
                 qPrintable(run.out));
        run = cli(dir, {"export", targetPath, "--format", "tab", "--keys", "authors,title", "-"});
        QCOMPARE(run.exitCode, 0);
        QCOMPARE(run.out, QStringLiteral("Title\tAuthors1\tAuthors2\nDune\tFrank Herbert\tAnn Lee\n"
                                         "Emma, a novel\tJane Austen\t\n"));

        // Only mapped columns are imported when --map is given.
        run = cli(dir, {"import", targetPath, csv, "--map", "Authors=Notes"});
        QCOMPARE(run.exitCode, 0);
        QVERIFY2(run.out.contains("Title -> (not imported)\nAuthors -> Notes"), qPrintable(run.out));
        run = cli(dir, {"info", targetPath});
        QVERIFY(run.out.contains("items: 4"));

        run = cli(dir, {"export", targetPath, "--format", "bibtex", "-"});
        QCOMPARE(run.exitCode, 0);
        QCOMPARE(run.out.count("@book {"), 4);
    }

    void cliRefusesBadInputAndKeepsTheLibrary_data()
    {
        QTest::addColumn<QByteArray>("file");
        QTest::addColumn<QStringList>("options");
        QTest::addColumn<QString>("message");
        QTest::newRow("not UTF-8") << QByteArray("Title\n\xff\xfe\n") << QStringList{} << "not UTF-8";
        QTest::newRow("NUL byte") << QByteArray("Title\nA\0\n", 9) << QStringList{} << "NUL byte";
        QTest::newRow("empty header") << QByteArray("\nA\n") << QStringList{} << "names no columns";
        QTest::newRow("ragged header") << QByteArray("Title,,X\nA,B,C\n") << QStringList{} << "no title";
        QTest::newRow("unknown column")
            << QByteArray("Title\nA\n") << QStringList{"--map", "Nope=Title"} << "no such column";
        QTest::newRow("unknown attribute")
            << QByteArray("Title\nA\n") << QStringList{"--map", "Title=Colour"} << "no attribute";
        QTest::newRow("bad date format") << QByteArray("Date Read\n1/2/2003\n")
                                         << QStringList{"--date", "Date Read=9"} << "index from 0 to 7";
        QTest::newRow("split on a single value")
            << QByteArray("Title\nA\n") << QStringList{"--split", "Title=;"} << "several values";
    }

    void cliRefusesBadInputAndKeepsTheLibrary()
    {
        QFETCH(QByteArray, file);
        QFETCH(QStringList, options);
        QFETCH(QString, message);
        QTemporaryDir dir;
        CliRun run = cli(dir, {"new", dir.filePath("lib"), "--kind", "comic"});
        const QString library = run.out.trimmed();
        const QString path = dir.filePath("in.txt");
        QFile out(path);
        QVERIFY(out.open(QIODevice::WriteOnly));
        out.write(file);
        out.close();
        run = cli(dir, QStringList{"import", library, path} + options);
        QCOMPARE(run.exitCode, 2);
        QVERIFY2(run.err.contains(message), qPrintable(run.err));
        QCOMPARE(run.err.count('\n'), 1);
        run = cli(dir, {"info", library});
        QVERIFY(run.out.contains("items: 0"));
    }

    void cliExportArguments_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<QString>("message");
        QTest::newRow("no format") << QStringList{"-"} << "--format";
        QTest::newRow("unknown format") << QStringList{"--format", "pdf", "-"} << "unknown format";
        QTest::newRow("bibtex of movies") << QStringList{"--format", "bibtex", "-"} << "book libraries only";
        QTest::newRow("unknown key") << QStringList{"--format", "csv", "--keys", "title,colour", "-"}
                                     << "colour";
        QTest::newRow("unknown list") << QStringList{"--format", "xml", "--list", "Wishes", "-"} << "no list";
        QTest::newRow("keys for xml")
            << QStringList{"--format", "xml", "--keys", "title", "-"} << "tab and csv only";
    }

    void cliExportArguments()
    {
        QFETCH(QStringList, arguments);
        QFETCH(QString, message);
        QTemporaryDir dir;
        auto library = ZTTestLibrary::create(dir, ZTMediaKind::Movie);
        library->addItemFromDictionary({{"title", "x"}});
        QVERIFY(library->saveDocument());
        const CliRun run = cli(dir, QStringList{"export", library->documentPath()} + arguments);
        QCOMPARE(run.exitCode, 2);
        QVERIFY2(run.err.contains(message), qPrintable(run.err));
    }
};

ZT_TEST_MAIN(TestRoundTrip)
#include "tst_roundtrip.moc"
