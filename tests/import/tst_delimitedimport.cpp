// The delimited importer: reading and splitting the text, guessing columns,
// converting cells and adding items to a real library.
#include "import/ZTDelimitedText.h"
#include "import/ZTImportConfiguration.h"
#include "import/ZTItemImportController.h"
#include "library/ZTDocument.h"
#include "lists/ZTList.h"
#include "model/ZTBook.h"
#include "support/ZTTestLibrary.h"
#include "support/ZTTestMain.h"
#include "support/ZTTestSupport.h"

#include <QSet>
#include <QTemporaryDir>
#include <QTest>

namespace {
// "Title=A|Authors=B" for a row, keys sorted, so rows compare as text.
QString rowText(const QHash<QString, QString> &row)
{
    QStringList keys = row.keys();
    keys.sort();
    QStringList parts;
    for (const QString &key : keys)
        parts << key + QLatin1Char('=') + row.value(key);
    return parts.join(QLatin1Char('|'));
}

QStringList rowsText(const ZTItemImportController &importer)
{
    QStringList rows;
    for (const auto &row : importer.rows())
        rows << rowText(importer.rowDictionary(row));
    return rows;
}
} // namespace

class TestDelimitedImport : public QObject {
    Q_OBJECT

private:
    QTemporaryDir m_dir;

private Q_SLOTS:
    void initTestCase() { ZTTestSupport::useTemporarySettings(m_dir); }

    void parse_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("delimiter");
        QTest::addColumn<QStringList>("titles");
        QTest::addColumn<QStringList>("rows");
        QTest::newRow("tab wins over comma in the header")
            << "Title\tNotes, more\nA\tb, c\n"
            << "\t" << QStringList{"Title", "Notes, more"} << QStringList{"Notes, more=b, c|Title=A"};
        QTest::newRow("one column without delimiter uses tab")
            << "Title\nA, B\n"
            << "\t" << QStringList{"Title"} << QStringList{"Title=A, B"};
        QTest::newRow("quoted delimiter and line ends stay, as CR")
            << "Title,Notes\r\n\"A, B\",\"one\r\ntwo\nthree\"\r\n"
            << "," << QStringList{"Title", "Notes"} << QStringList{"Notes=one\rtwo\rthree|Title=A, B"};
        QTest::newRow("doubled quotes inside quotes")
            << "Title\n\"ab\"\"cd\"\n"
            << "\t" << QStringList{"Title"} << QStringList{"Title=ab\"cd"};
        QTest::newRow("quote inside an unquoted cell stays")
            << "Title,Notes\nab\"cd,x\"\"y\n"
            << "," << QStringList{"Title", "Notes"} << QStringList{"Notes=x\"\"y|Title=ab\"cd"};
        QTest::newRow("empty cells and two quotes are dropped")
            << "Title,Notes,Genre\n,\"\",x\n"
            << "," << QStringList{"Title", "Notes", "Genre"} << QStringList{"Genre=x"};
        QTest::newRow("a line of empty cells gives no row")
            << "Title,Notes\n,\n\nA,\n"
            << "," << QStringList{"Title", "Notes"} << QStringList{"Title=A"};
        QTest::newRow("header only") << "Title,Notes"
                                     << "," << QStringList{"Title", "Notes"} << QStringList{};
        QTest::newRow("shorter lines have fewer entries")
            << "Title\tNotes\tGenre\nA\n"
            << "\t" << QStringList{"Title", "Notes", "Genre"} << QStringList{"Title=A"};
        QTest::newRow("old Mac line ends and a byte-order mark")
            << QStringLiteral("\uFEFFTitle,Genre\rA,b\rC,d") << "," << QStringList{"Title", "Genre"}
            << QStringList{"Genre=b|Title=A", "Genre=d|Title=C"};
        QTest::newRow("titles keep their quotes")
            << "\"Title\",Genre\nA,b\n"
            << "," << QStringList{"\"Title\"", "Genre"} << QStringList{"\"Title\"=A|Genre=b"};
        QTest::newRow("an unclosed quote runs to the end")
            << "Title,Notes\nA,\"open\nB,c\n"
            << "," << QStringList{"Title", "Notes"} << QStringList{"Notes=\"open\rB,c\r\r|Title=A"};
    }

    void parse()
    {
        QFETCH(QString, text);
        QFETCH(QString, delimiter);
        QFETCH(QStringList, titles);
        QFETCH(QStringList, rows);
        ZTItemImportController importer;
        QVERIFY(importer.loadData(text.toUtf8()));
        QCOMPARE(importer.fileProblem(), QString());
        QCOMPARE(QString(importer.delimiter()), delimiter);
        QStringList from;
        for (const ZTImportColumn &column : importer.keyDicts())
            from << column.fromColumn;
        QCOMPARE(from, titles);
        QCOMPARE(rowsText(importer), rows);
    }

    void columnGuess_data()
    {
        QTest::addColumn<QString>("title");
        QTest::addColumn<QString>("toColumn");
        QTest::addColumn<bool>("state");
        QTest::newRow("exact") << "Title"
                               << "Title" << true;
        QTest::newRow("case blind") << "PUBLISHER"
                                    << "Publisher" << true;
        QTest::newRow("a bare word takes the first title holding it") << "Date"
                                                                      << "Date Added" << true;
        QTest::newRow("a longer column takes a title it holds") << "Price Paid"
                                                                << "Price" << true;
        QTest::newRow("Read lands on Date Read, which sorts first") << "Read"
                                                                    << "Date Read" << true;
        QTest::newRow("numbered export columns") << "Authors2"
                                                 << "Authors" << true;
        QTest::newRow("no match keeps ISBN, switched off") << "Shelf mark"
                                                           << "ISBN" << false;
    }

    void columnGuess()
    {
        QFETCH(QString, title);
        QFETCH(QString, toColumn);
        QFETCH(bool, state);
        ZTItemImportController importer;
        importer.setFileContents(title + QStringLiteral("\nx\n"));
        QCOMPARE(importer.keyDicts().size(), 1);
        QCOMPARE(importer.keyDicts().first().toColumn, toColumn);
        QCOMPARE(importer.keyDicts().first().state, state);
    }

    void toColumnsAreTheKindsImportableTitlesSorted()
    {
        ZTItemImportController importer;
        const QStringList titles = importer.toColumns();
        QVERIFY(titles.contains("Authors"));
        QVERIFY(!titles.contains("Artists"));
        for (qsizetype i = 1; i < titles.size(); ++i)
            QVERIFY2(titles.at(i - 1).compare(titles.at(i), Qt::CaseInsensitive) <= 0,
                     qPrintable(titles.at(i)));
    }

    void setToColumnSwitchesOnAndForgetsTheValue()
    {
        ZTItemImportController importer;
        importer.setFileContents(QStringLiteral("Names\tWhen\nx\ty\n"));
        importer.keyDicts()[0].value = QStringLiteral(";");
        importer.setToColumn(0, QStringLiteral("Keywords"));
        QVERIFY(importer.keyDicts().at(0).state);
        QVERIFY(!importer.keyDicts().at(0).value.isValid());
        QCOMPARE(importer.optionText(0), QStringLiteral("Delimiter:"));
        importer.setToColumn(1, QStringLiteral("Date Read"));
        QCOMPARE(importer.optionText(1), QStringLiteral("Date Format:"));
        importer.setToColumn(1, QStringLiteral("Title"));
        QCOMPARE(importer.optionText(1), QString());
    }

    void conversions_data()
    {
        QTest::addColumn<QString>("type");
        QTest::addColumn<QString>("text");
        QTest::addColumn<QVariant>("expected");
        QTest::newRow("price with symbol") << "float"
                                           << "$12.99" << QVariant(12.99);
        QTest::newRow("price without point") << "float"
                                             << "1200" << QVariant(1200.0);
        QTest::newRow("grouped price") << "float"
                                       << "1,299.00" << QVariant(1299.0);
        QTest::newRow("one decimal is read as two") << "float"
                                                    << "12.5" << QVariant(1.25);
        QTest::newRow("the sign is dropped") << "float"
                                             << "-3.00" << QVariant(3.0);
        QTest::newRow("no digits") << "float"
                                   << "n/a" << QVariant(0.0);
        QTest::newRow("rating 6 is unrated") << "rating"
                                             << "6" << QVariant(qint64(0));
        QTest::newRow("rating 5") << "rating"
                                  << "5" << QVariant(qint64(5));
        QTest::newRow("negative rating") << "rating"
                                         << "-2" << QVariant(qint64(0));
        QTest::newRow("Yes") << "boolean"
                             << "Yes" << QVariant(1);
        QTest::newRow("y") << "boolean"
                           << "y" << QVariant(1);
        QTest::newRow("NO") << "boolean"
                            << "NO" << QVariant(0);
        QTest::newRow("a number") << "boolean"
                                  << "2" << QVariant(qint64(2));
        QTest::newRow("other words") << "boolean"
                                     << "maybe" << QVariant(qint64(0));
        QTest::newRow("integer with text behind") << "integer"
                                                  << "  42 pages" << QVariant(qint64(42));
        QTest::newRow("negative integer") << "integer"
                                          << "-7" << QVariant(qint64(-7));
        QTest::newRow("huge integer saturates")
            << "integer"
            << "99999999999999999999999" << QVariant(std::numeric_limits<qint64>::max());
        QTest::newRow("string stays") << "string"
                                      << " a " << QVariant(QStringLiteral(" a "));
    }

    void conversions()
    {
        QFETCH(QString, type);
        QFETCH(QString, text);
        QFETCH(QVariant, expected);
        const QVariant value = ZTItemImportController::convertedValue(type, text);
        if (expected.typeId() == QMetaType::Double)
            QCOMPARE(value.toDouble(), expected.toDouble());
        else
            QCOMPARE(value.toString(), expected.toString());
    }

    void dates_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("format");
        QTest::addColumn<QDate>("date");
        QTest::addColumn<int>("bit");
        QTest::newRow("MM/DD/YYYY") << "05/17/1999" << 0 << QDate(1999, 5, 17) << 0;
        QTest::newRow("DD/MM/YYYY") << "17/05/1999" << 1 << QDate(1999, 5, 17) << 0;
        QTest::newRow("YYYY/DD/MM") << "1999/17/05" << 3 << QDate(1999, 5, 17) << 0;
        QTest::newRow("YYYY-MM-DD") << "1999-05-17" << 6 << QDate(1999, 5, 17) << 0;
        QTest::newRow("separators need not match") << "1999.05.17" << 6 << QDate(1999, 5, 17) << 0;
        QTest::newRow("month and year") << "05/2001" << 0 << QDate(2001, 5, 1) << 1;
        QTest::newRow("year and month, year first") << "2001-05" << 6 << QDate(2001, 5, 1) << 1;
        QTest::newRow("year alone") << "2001" << 1 << QDate(2001, 1, 1) << 2;
        QTest::newRow("a short number is no year") << "12" << 0 << QDate() << 0;
        QTest::newRow("month out of range") << "13/13/2001" << 0 << QDate() << 0;
        QTest::newRow("words") << "yesterday" << 0 << QDate() << 0;
        QTest::newRow("format out of range reads as the first")
            << "05/17/1999" << 42 << QDate(1999, 5, 17) << 0;
    }

    void dates()
    {
        QFETCH(QString, text);
        QFETCH(int, format);
        QFETCH(QDate, date);
        QFETCH(int, bit);
        ZTDateBit read;
        const QDateTime value = ZTItemImportController::parseDate(text, format, &read);
        QCOMPARE(value.isValid() ? value.date() : QDate(), date);
        if (date.isValid())
            QCOMPARE(read.value(), bit);
    }

    void badFilesAreReportedAndAddNothing_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QString>("problem");
        QTest::newRow("not UTF-8") << QByteArray("Title\nCaf\xe9\n") << "not UTF-8";
        QTest::newRow("NUL byte") << QByteArray("Title\nA\0B\n", 10) << "NUL";
        QTest::newRow("empty file") << QByteArray() << "no text";
        QTest::newRow("blanks only") << QByteArray(" \n\t\n") << "no text";
        QTest::newRow("blank first line") << QByteArray("\nTitle\nA\n") << "names no columns";
        QTest::newRow("header of delimiters") << QByteArray(",,\nA,B,C\n") << "names no columns";
        QTest::newRow("column without title") << QByteArray("Title,,Genre\nA,B,C\n") << "column 2";
        QTest::newRow("trailing delimiter in header") << QByteArray("Title\tGenre\t\nA\tB\t\n") << "column 3";
        QTest::newRow("column named twice") << QByteArray("Title,Title\nA,B\n") << "twice";
        QTest::newRow("ragged line") << QByteArray("Title,Genre\nA,B\nC,D,E\n") << "line 3";
    }

    void badFilesAreReportedAndAddNothing()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(QString, problem);
        QTemporaryDir dir;
        auto document = ZTTestLibrary::create(dir, ZTMediaKind::Book);
        QVERIFY(document);
        ZTItemImportController importer(document.get());
        QVERIFY(!importer.loadData(bytes));
        QVERIFY2(importer.fileProblem().contains(problem), qPrintable(importer.fileProblem()));
        int added = -1;
        QCOMPARE(importer.save(&added), ZTItemImportController::SaveResult::FileProblem);
        QCOMPARE(added, 0);
        QCOMPARE(document->allItems().size(), 0);
        QVERIFY(!document->isDocumentEdited());
    }

    void hostileTextNeverBreaksTheTable()
    {
        // Random mixes of the characters the reader treats specially: every
        // row must only name titles of the first line, and saving must add
        // exactly the rows that the table shows when the file is accepted.
        QTemporaryDir dir;
        auto document = ZTTestLibrary::create(dir, ZTMediaKind::Movie);
        const QString alphabet = QStringLiteral("\"\",\t\n\r a\u2028Z");
        quint32 seed = 12345;
        int accepted = 0;
        for (int round = 0; round < 400; ++round) {
            QString text;
            const int length = int(seed % 60);
            for (int i = 0; i < length; ++i) {
                seed = seed * 1103515245u + 12345u;
                text += alphabet.at(int((seed >> 16) % quint32(alphabet.size())));
            }
            ZTItemImportController importer(document.get());
            importer.setFileContents(text);
            QSet<QString> titles;
            for (const ZTImportColumn &column : importer.keyDicts())
                titles.insert(column.fromColumn);
            for (const auto &row : importer.rows()) {
                QVERIFY2(row.size() <= importer.keyDicts().size(),
                         qPrintable(text.toUtf8().toPercentEncoding()));
                const auto dictionary = importer.rowDictionary(row);
                for (auto it = dictionary.constBegin(); it != dictionary.constEnd(); ++it)
                    QVERIFY2(titles.contains(it.key()), qPrintable(text.toUtf8().toPercentEncoding()));
            }
            const qsizetype before = document->allItems().size();
            int added = 0;
            const auto result = importer.save(&added);
            if (!importer.fileProblem().isEmpty()) {
                QCOMPARE(result, ZTItemImportController::SaveResult::FileProblem);
                QCOMPARE(document->allItems().size(), before);
            } else {
                ++accepted;
                QVERIFY(added <= importer.rows().size());
                QCOMPARE(document->allItems().size(), before + added);
            }
        }
        QVERIFY(accepted > 0);
    }

    void trailingEmptyCellsAreNoProblem()
    {
        ZTItemImportController importer;
        QVERIFY(importer.loadData("Title,Genre\nA,B,,\n"));
        QCOMPARE(rowsText(importer), QStringList{"Genre=B|Title=A"});
    }

    void saveAddsOneItemPerRow()
    {
        QTemporaryDir dir;
        auto document = ZTTestLibrary::create(dir, ZTMediaKind::Book);
        QVERIFY(document);
        ZTItemImportController importer(document.get());
        QVERIFY(importer.loadData("Title\tAuthors\tKeywords\tPrice\tRating\tDate Published\tPages\tShelf\n"
                                  "First\tAnn Lee; Bo Ray\tx;y\t$1,299.00\t6\t2001\t12 pp.\tA1\n"
                                  "Second\tCy Dee\t\t12.5\t4\t17/05/1999\t\t\n"
                                  "\t\t\t\t\t\t\tonly an unmapped cell\n"));
        importer.keyDicts()[1].value = QStringLiteral("; ");
        importer.keyDicts()[2].value = QStringLiteral(";");
        importer.keyDicts()[5].value = 1; // DD/MM/YYYY
        QVERIFY(!importer.keyDicts()[7].state);
        int added = 0;
        QCOMPARE(importer.save(&added), ZTItemImportController::SaveResult::Imported);
        QCOMPARE(added, 2);
        QVERIFY(document->isDocumentEdited());
        const QList<ZTItem *> items = document->allItems();
        QCOMPARE(items.size(), 2);
        // Each new item goes to the front of the main list.
        QCOMPARE(items.at(0)->title(), QStringLiteral("Second"));
        const auto *first = static_cast<const ZTBook *>(items.at(1));
        QCOMPARE(first->authors(), (QStringList{"Ann Lee", "Bo Ray"}));
        QCOMPARE(first->keywords(), (QStringList{"x", "y"}));
        QCOMPARE(first->valueForKey("price").toDouble(), 1299.0);
        QCOMPARE(first->valueForKey("rating").toInt(), 0);
        QCOMPARE(first->valueForKey("pages").toInt(), 12);
        QCOMPARE(first->valueForKey("datePublished").toDateTime().toLocalTime().date(), QDate(2001, 1, 1));
        QCOMPARE(first->valueForKey("datePublishedBitFlag").toInt(), int(ZTDateBit::Year));
        // Filled as from the edit sheet: no "Owned" column means not owned.
        QVERIFY(!first->isOwned());
        QCOMPARE(first->priceLocale(), QStringLiteral("USD"));
        const ZTItem *second = items.at(0);
        QCOMPARE(second->valueForKey("price").toDouble(), 1.25);
        QCOMPARE(second->valueForKey("datePublished").toDateTime().toLocalTime().date(), QDate(1999, 5, 17));
        QCOMPARE(importer.keyDicts().at(5).value.toInt(), 1);
    }

    void largeFilesComeInWholeAndInOrder()
    {
        // Enough rows for the rows to be read in several batches, the last one
        // short; blank rows and loans scattered through them.
        const int rows = 1300;
        QString text = QStringLiteral("Title,Date Published,Pages,Lent Out,Lent To Email,Shelf\n");
        QStringList expected;
        QSet<QString> lentTitles;
        for (int i = 0; i < rows; ++i) {
            if (i % 97 == 40) {
                text += QStringLiteral(",,,,,only an unmapped cell\n");
                continue;
            }
            const QString title = QStringLiteral("Row %1").arg(i);
            const bool lent = i % 50 == 7;
            text += QStringLiteral("%1,%2/%3/19%4,%5,%6,%7,\n")
                        .arg(title)
                        .arg(i % 12 + 1)
                        .arg(i % 28 + 1)
                        .arg(i % 100, 2, 10, QLatin1Char('0'))
                        .arg(i)
                        .arg(lent ? QStringLiteral("Yes") : QString())
                        .arg(lent && i % 100 == 7 ? QStringLiteral("r%1@example.org").arg(i) : QString());
            expected.prepend(title);
            if (lent)
                lentTitles.insert(title);
        }
        QTemporaryDir dir;
        auto document = ZTTestLibrary::create(dir, ZTMediaKind::Book);
        ZTItemImportController importer(document.get());
        importer.setFileContents(text);
        int added = 0;
        QCOMPARE(importer.save(&added), ZTItemImportController::SaveResult::Imported);
        QCOMPARE(added, expected.size());
        const QList<ZTItem *> items = document->allItems();
        QCOMPARE(items.size(), expected.size());
        int lentSeen = 0;
        for (qsizetype at = 0; at < items.size(); ++at) {
            const ZTItem *item = items.at(at);
            QCOMPARE(item->title(), expected.at(at));
            const int i = item->title().mid(4).toInt();
            QCOMPARE(item->valueForKey("pages").toInt(), i);
            QCOMPARE(item->valueForKey("datePublished").toDateTime().toLocalTime().date(),
                     QDate(1900 + i % 100, i % 12 + 1, i % 28 + 1));
            QCOMPARE(item->isLentOut(), lentTitles.contains(item->title()));
            if (item->isLentOut()) {
                // Half the loans come without any detail, and still exist.
                QCOMPARE(item->lentToEmail(),
                         i % 100 == 7 ? QStringLiteral("r%1@example.org").arg(i) : QString());
                ++lentSeen;
            }
        }
        QCOMPARE(lentSeen, lentTitles.size());
        // The date column read with the first format, and now says so.
        QCOMPARE(importer.keyDicts().at(1).value.toInt(), 0);
        QVERIFY(importer.keyDicts().at(1).value.isValid());
    }

    void lendingNeedsLentOut_data()
    {
        QTest::addColumn<QString>("lentOut");
        QTest::addColumn<QString>("email");
        QTest::addColumn<bool>("lent");
        QTest::newRow("lent with details") << "Yes"
                                           << "a@b.c" << true;
        QTest::newRow("lent without details") << "yes"
                                              << "" << true;
        QTest::newRow("details but not lent") << "No"
                                              << "a@b.c" << false;
        QTest::newRow("no answer") << ""
                                   << "a@b.c" << false;
    }

    void lendingNeedsLentOut()
    {
        QFETCH(QString, lentOut);
        QFETCH(QString, email);
        QFETCH(bool, lent);
        QTemporaryDir dir;
        auto document = ZTTestLibrary::create(dir, ZTMediaKind::Book);
        ZTItemImportController importer(document.get());
        importer.setFileContents(QStringLiteral("Title,Lent Out,Lent To Name,Lent To Email,Date Due\n"
                                                "Book,%1,Ann,%2,01/02/2030\n")
                                     .arg(lentOut, email));
        importer.save();
        const QList<ZTItem *> items = document->allItems();
        QCOMPARE(items.size(), 1);
        QCOMPARE(items.first()->isLentOut(), lent);
        if (lent) {
            QCOMPARE(items.first()->lentToEmail(), email);
            // The name is read from a title the importer does not offer.
            QCOMPARE(items.first()->lentToName(), QString());
            QCOMPARE(items.first()->dateDue().toLocalTime().date(), QDate(2030, 1, 2));
        }
    }

    void noColumnsSelectedStaysInTheSheet()
    {
        QTemporaryDir dir;
        auto document = ZTTestLibrary::create(dir, ZTMediaKind::Album);
        ZTItemImportController importer(document.get());
        importer.setFileContents(QStringLiteral("Title\nA\n"));
        importer.keyDicts()[0].state = false;
        QCOMPARE(importer.save(), ZTItemImportController::SaveResult::NoColumnsSelected);
        QCOMPARE(document->allItems().size(), 0);
        QCOMPARE(ZTItemImportController::noColumnsTitle(), QStringLiteral("No Columns Selected."));
    }

    void importChoicePerKind_data()
    {
        QTest::addColumn<int>("kind");
        QTest::addColumn<QStringList>("titles");
        QTest::addColumn<QStringList>("selectors");
        QTest::newRow("book") << int(ZTMediaKind::Book)
                              << QStringList{"Text file", "Zettary v.1", "Bookpedia", "Books",
                                             "Delicious Library"}
                              << QStringList{"importItemsFromFile", "importItemsFromB1", "importItemsFromPD",
                                             "importItemsFromBK", "importItemsFromDL"};
        QTest::newRow("album") << int(ZTMediaKind::Album)
                               << QStringList{"Text file", "Zettary v.1", "CDpedia", "Delicious Library"}
                               << QStringList{"importItemsFromFile", "importItemsFromB1", "importItemsFromPD",
                                              "importItemsFromDL"};
        QTest::newRow("movie") << int(ZTMediaKind::Movie)
                               << QStringList{"Text file", "Zettary v.1", "DVDpedia", "Delicious Library"}
                               << QStringList{"importItemsFromFile", "importItemsFromB1", "importItemsFromPD",
                                              "importItemsFromDL"};
        QTest::newRow("comic") << int(ZTMediaKind::Comic) << QStringList{"Text file", "Zettary v.1"}
                               << QStringList{"importItemsFromFile", "importItemsFromB1"};
    }

    void importChoicePerKind()
    {
        QFETCH(int, kind);
        QFETCH(QStringList, titles);
        QFETCH(QStringList, selectors);
        ZTImportConfigurationController controller{ZTMediaKind(kind)};
        QStringList gotTitles, gotSelectors;
        for (const ZTImportSource &source : controller.sources()) {
            gotTitles << source.title;
            gotSelectors << source.selectorString;
            // Only the text importer exists so far; the others show disabled.
            QCOMPARE(source.available, source.selectorString == QLatin1String("importItemsFromFile"));
        }
        QCOMPARE(gotTitles, titles);
        QCOMPARE(gotSelectors, selectors);
        controller.reset();
        QCOMPARE(controller.selectorString(), QString());
        QVERIFY(!controller.select(1));
        QVERIFY(!controller.select(titles.size()));
        QCOMPARE(controller.choice(), -1);
        QVERIFY(controller.select(0));
        QCOMPARE(controller.selectorString(), QStringLiteral("importItemsFromFile"));
    }
};

ZT_TEST_MAIN(TestDelimitedImport)
#include "tst_delimitedimport.moc"
