#include "base/ZTLog.h"
#include "export/ZTExportConfigurationController.h"
#include "export/ZTExportController.h"
#include "export/ZTListPickerController.h"
#include "library/ZTWindowDisplay.h"
#include "model/ZTBook.h"
#include "ui/app/ZTSampleLibrary.h"
#include "ui/mainwindow/ZTItemTableModel.h"
#include "ui/mainwindow/ZTLibraryWindow.h"
#include "ui/sheets/ZTExportSheet.h"
#include "ui/sheets/ZTImportConfigurationSheet.h"
#include "ui/sheets/ZTImportSheet.h"
#include "ui/sheets/ZTListPickerView.h"

#include "ZTSheetFixture.h"
#include "support/ZTTestMain.h"

#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPointer>
#include <QPushButton>
#include <QRadioButton>
#include <QSignalSpy>
#include <QStackedWidget>
#include <QTableWidget>
#include <QXmlStreamReader>
#include <QtTest>

namespace {
QString text(const char *s)
{
    return QString::fromUtf8(s);
}

QString writeFile(const QTemporaryDir &dir, const QString &name, const QByteArray &bytes)
{
    const QString path = dir.filePath(name);
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
        qFatal("cannot write %s", qPrintable(path));
    return path;
}

QByteArray readFile(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

ZTItem *itemTitled(ZTDocument &document, const QString &title)
{
    for (ZTItem *item : document.allItems())
        if (item->title() == title)
            return item;
    return nullptr;
}

// Picks an entry of a pop-up as the user does.
void choose(QComboBox *combo, const QString &entry)
{
    QVERIFY(combo);
    const int index = combo->findText(entry);
    QVERIFY2(index >= 0, qPrintable(entry));
    combo->setCurrentIndex(index);
    Q_EMIT combo->activated(index);
}

int rowOfSource(const ZTImportSheet &sheet, const QString &fromColumn)
{
    for (int row = 0; row < sheet.table()->rowCount(); ++row)
        if (sheet.table()->item(row, ZTImportSheet::SourceColumn)->text() == fromColumn)
            return row;
    return -1;
}

// What the warning alert was asked to say.
struct Warnings {
    QStringList titles;
    QStringList messages;
    auto hook()
    {
        return [this](const QString &title, const QString &message) {
            titles << title;
            messages << message;
        };
    }
};

// A save panel that answers with a fixed path and notes the file type asked for.
struct SavePanel {
    QString path;
    QStringList asked;
    auto hook()
    {
        return [this](const QString &fileType) {
            asked << fileType;
            return path;
        };
    }
};

QVariantMap book(const char *title, QStringList authors = {})
{
    QVariantList people;
    for (const QString &name : authors)
        people << QVariantMap{{QStringLiteral("name"), name}, {QStringLiteral("role"), QString()}};
    return {{QStringLiteral("title"), text(title)}, {QStringLiteral("authorRoleDicts"), people}};
}
} // namespace

class TestImportExportSheets : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void importChoiceOffersEverySourceButOnlyBuiltOnes_data();
    void importChoiceOffersEverySourceButOnlyBuiltOnes();
    void tabFileIsMappedEditedAndImported();
    void commaFileWithQuotesKeepsDelimitersAndQuotesInCells();
    void unreadableFilesShowAnEmptyTableAndAddNothing_data();
    void unreadableFilesShowAnEmptyTableAndAddNothing();
    void saveWithNoColumnTickedWarnsAndStays();
    void exportWritesTheTickedListsAsDelimitedText();
    void exportWritesXmlThatParses();
    void exportButtonFollowsTheNumberOfItemsPicked();
    void exportThatCannotBeWrittenEndsQuietly();
    void windowMenusOpenTheSheetsAndShowTheirResults();
};

void TestImportExportSheets::importChoiceOffersEverySourceButOnlyBuiltOnes_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<QStringList>("titles");
    QTest::newRow("books") << int(ZTMediaKind::Book)
                           << QStringList{"Text file", "Zettary v.1", "Bookpedia", "Books",
                                          "Delicious Library"};
    QTest::newRow("albums") << int(ZTMediaKind::Album)
                            << QStringList{"Text file", "Zettary v.1", "CDpedia", "Delicious Library"};
    QTest::newRow("comics") << int(ZTMediaKind::Comic) << QStringList{"Text file", "Zettary v.1"};
}

void TestImportExportSheets::importChoiceOffersEverySourceButOnlyBuiltOnes()
{
    QFETCH(int, kind);
    QFETCH(QStringList, titles);
    ZTImportConfigurationSheet sheet{ZTMediaKind(kind)};
    QCOMPARE(sheet.windowTitle(), text("Import Configuration"));
    QCOMPARE(sheet.buttonCount(), titles.size());
    for (int tag = 0; tag < titles.size(); ++tag) {
        QCOMPARE(sheet.button(tag)->text(), titles[tag]);
        // Only the delimited importer is built; the others wait in their places.
        QCOMPARE(sheet.button(tag)->isEnabled(), tag == 0);
    }
    QVERIFY(sheet.button(0)->isChecked());
    QCOMPARE(sheet.selectButton()->text(), text("Select"));

    // A disabled button cannot be clicked into choice.
    QTest::mouseClick(sheet.button(1), Qt::LeftButton);
    QVERIFY(sheet.button(0)->isChecked());

    QSignalSpy chosen(&sheet, &ZTImportConfigurationSheet::sourceSelected);
    sheet.show();
    sheet.selectButton()->click();
    QCOMPARE(chosen.size(), 1);
    QCOMPARE(chosen.first().first().toString(), ZTImportSelector::file);
    QCOMPARE(sheet.result(), int(QDialog::Accepted));
    QCOMPARE(sheet.controller().choice(), 0);
}

void TestImportExportSheets::tabFileIsMappedEditedAndImported()
{
    ZTSheetFixture f;
    f.addTitled(text("Already here"));
    const QString path = writeFile(f.dir(), QStringLiteral("books.txt"),
                                   "Title\tAuthor\tDate Published\tPrice\tRemarks\r\n"
                                   "Dune\tFrank Herbert; Brian Herbert\t01/08/1965\t$12.99\tsigned copy\r\n"
                                   "Emma\tJane Austen\t23/12/1815\t\t\r\n"
                                   "\t\t\t\t\r\n");
    ZTImportSheet sheet(f.document());
    Warnings warnings;
    sheet.setWarning(warnings.hook());
    sheet.setFileChooser([path] { return path; });
    sheet.show();
    QVERIFY(QTest::qWaitForWindowExposed(&sheet));
    QCOMPARE(sheet.table()->rowCount(), 0);
    QTest::mouseClick(sheet.loadButton(), Qt::LeftButton);

    QCOMPARE(sheet.pathLabel()->text(), path);
    QVERIFY(sheet.problemLabel()->isHidden());
    QCOMPARE(sheet.instructionLabel()->text(),
             text("If you are importing into a column that can contain multiple entries, you should specify "
                  "whether the column you are importing from contains an internal delimiter or not.  If so, "
                  "enter the delimiter in the 'value' column, otherwise you can leave it blank."));
    QStringList headers;
    for (int c = 0; c < sheet.table()->columnCount(); ++c)
        headers << sheet.table()->horizontalHeaderItem(c)->text();
    QCOMPARE(headers, (QStringList{"Import", "Source Column", "Into Column", "Option", "Value"}));
    QCOMPARE(sheet.table()->rowCount(), 5);

    // The guesses: titles found inside attribute titles are ticked, the rest
    // wait unticked on the first pick.
    struct Guess {
        const char *from;
        const char *into;
        bool ticked;
        const char *option;
    };
    const Guess guesses[] = {{"Title", "Title", true, ""},
                             {"Author", "Authors", true, "Delimiter:"},
                             {"Date Published", "Date Published", true, "Date Format:"},
                             {"Price", "Price", true, ""},
                             {"Remarks", "ISBN", false, ""}};
    for (const Guess &guess : guesses) {
        const int row = rowOfSource(sheet, text(guess.from));
        QVERIFY2(row >= 0, guess.from);
        QCOMPARE(sheet.intoPopUp(row)->currentText(), text(guess.into));
        QCOMPARE(sheet.importBox(row)->isChecked(), guess.ticked);
        QCOMPARE(sheet.optionText(row), text(guess.option));
    }
    const int author = rowOfSource(sheet, text("Author"));
    const int date = rowOfSource(sheet, text("Date Published"));
    const int price = rowOfSource(sheet, text("Price"));
    const int remarks = rowOfSource(sheet, text("Remarks"));
    QVERIFY(qobject_cast<QLineEdit *>(sheet.valueWidget(author))->isEnabled());
    auto *dateFormats = qobject_cast<QComboBox *>(sheet.valueWidget(date));
    QVERIFY(dateFormats);
    QStringList formats;
    for (int i = 0; i < dateFormats->count(); ++i)
        formats << dateFormats->itemText(i);
    QCOMPARE(formats, (QStringList{"MM/DD/YYYY", "DD/MM/YYYY", "YYYY/MM/DD", "YYYY/DD/MM", "MM-DD-YYYY",
                                   "DD-MM-YYYY", "YYYY-MM-DD", "YYYY-DD-MM"}));
    QVERIFY(!sheet.valueWidget(price)->isEnabled());

    // The user's changes: a delimiter, a date format, an unticked column and
    // a new target, which ticks its row and changes what the value cell is.
    auto *delimiter = qobject_cast<QLineEdit *>(sheet.valueWidget(author));
    QTest::keyClicks(delimiter, text("; "));
    choose(dateFormats, text("DD/MM/YYYY"));
    sheet.importBox(price)->click();
    choose(sheet.intoPopUp(remarks), text("Notes"));
    QVERIFY(sheet.importBox(remarks)->isChecked());
    QCOMPARE(sheet.optionText(remarks), QString());
    choose(sheet.intoPopUp(remarks), text("Keywords"));
    QCOMPARE(sheet.optionText(remarks), text("Delimiter:"));
    QVERIFY(sheet.valueWidget(remarks)->isEnabled());
    choose(sheet.intoPopUp(remarks), text("Notes"));
    QVERIFY(!sheet.valueWidget(remarks)->isEnabled());
    QCOMPARE(f.itemCount(), 1); // nothing happens before Save/OK

    QSignalSpy imported(&sheet, &ZTImportSheet::itemsImported);
    QCOMPARE(sheet.saveButton()->text(), text("Save/OK"));
    sheet.saveButton()->click();
    QVERIFY(warnings.titles.isEmpty());
    QCOMPARE(imported.size(), 1);
    QCOMPARE(imported.first().first().toInt(), 2); // the blank line makes no item
    QCOMPARE(sheet.result(), int(QDialog::Accepted));
    QCOMPARE(f.itemCount(), 3);

    auto *dune = dynamic_cast<ZTBook *>(itemTitled(f.document(), text("Dune")));
    QVERIFY(dune);
    QCOMPARE(dune->authors(), (QStringList{"Frank Herbert", "Brian Herbert"}));
    QCOMPARE(dune->valueForKey(QStringLiteral("datePublished")).toDateTime().date(), QDate(1965, 8, 1));
    QCOMPARE(dune->valueForKey(QStringLiteral("notes")).toString(), text("signed copy"));
    QVERIFY(dune->valueForKey(QStringLiteral("price")).isNull()); // unticked
    auto *emma = dynamic_cast<ZTBook *>(itemTitled(f.document(), text("Emma")));
    QVERIFY(emma);
    QCOMPARE(emma->authors(), QStringList{text("Jane Austen")});
    QCOMPARE(emma->valueForKey(QStringLiteral("datePublished")).toDateTime().date(), QDate(1815, 12, 23));
    // New items go to the front of the main list, and the library is edited.
    const QStringList main = f.document().mainList()->itemOids();
    QCOMPARE(main.size(), 3);
    QCOMPARE(f.document().itemForOid(main.last())->title(), text("Already here"));
    QVERIFY(main.mid(0, 2).contains(dune->oid()) && main.mid(0, 2).contains(emma->oid()));
    QVERIFY(f.document().isDocumentEdited());
}

void TestImportExportSheets::commaFileWithQuotesKeepsDelimitersAndQuotesInCells()
{
    ZTSheetFixture f;
    // The second cell of the first row spans two lines inside its quotes.
    const QString path = writeFile(f.dir(), QStringLiteral("books.csv"),
                                   "Title,Publisher,Pages\n"
                                   "\"Hello, World\",\"Say \"\"Hi\"\"\nand go\",123\n"
                                   "Plain,Quote\"Inside,7\n");
    ZTImportSheet sheet(f.document());
    QVERIFY(sheet.loadPath(path));
    QCOMPARE(sheet.controller().delimiter(), QLatin1Char(','));
    QCOMPARE(sheet.table()->rowCount(), 3);
    for (int row = 0; row < 3; ++row)
        QVERIFY(sheet.importBox(row)->isChecked());
    sheet.saveButton()->click();
    QCOMPARE(sheet.result(), int(QDialog::Accepted));
    QCOMPARE(f.itemCount(), 2);
    ZTItem *hello = itemTitled(f.document(), text("Hello, World"));
    QVERIFY(hello);
    QCOMPARE(hello->valueForKey(QStringLiteral("publisher")).toString(), text("Say \"Hi\"\rand go"));
    QCOMPARE(hello->valueForKey(QStringLiteral("pages")).toInt(), 123);
    ZTItem *plain = itemTitled(f.document(), text("Plain"));
    QVERIFY(plain);
    QCOMPARE(plain->valueForKey(QStringLiteral("publisher")).toString(), text("Quote\"Inside"));
}

void TestImportExportSheets::unreadableFilesShowAnEmptyTableAndAddNothing_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("latin-1") << QByteArray("Title\tAuthor\nCaf\xe9\tZola\n");
    QTest::newRow("nul byte") << QByteArray("Title\tAuthor\nDune\0\tHerbert\n", 25);
    QTest::newRow("empty header") << QByteArray("\t\t\nDune\tHerbert\t1965\n");
    QTest::newRow("untitled column") << QByteArray("Title\t\tPages\nDune\tHerbert\t412\n");
    QTest::newRow("ragged lines") << QByteArray("Title\tPages\nDune\t412\tsurplus\n");
    QTest::newRow("blank file") << QByteArray(" \n\n");
}

void TestImportExportSheets::unreadableFilesShowAnEmptyTableAndAddNothing()
{
    QFETCH(QByteArray, bytes);
    ZTSheetFixture f;
    f.addTitled(text("Kept"));
    // A good file first, so that a bad one must also clear what was shown.
    const QString good = writeFile(f.dir(), QStringLiteral("good.txt"), "Title\nDune\n");
    const QString bad = writeFile(f.dir(), QStringLiteral("bad.txt"), bytes);
    ZTImportSheet sheet(f.document());
    Warnings warnings;
    sheet.setWarning(warnings.hook());
    sheet.show();
    QVERIFY(sheet.loadPath(good));
    QCOMPARE(sheet.table()->rowCount(), 1);
    QVERIFY(!sheet.loadPath(bad));
    QCOMPARE(sheet.table()->rowCount(), 0);
    QVERIFY(!sheet.controller().fileProblem().isEmpty());
    QVERIFY(sheet.problemLabel()->isVisibleTo(&sheet));
    QVERIFY2(sheet.problemLabel()->text().contains(sheet.controller().fileProblem()),
             qPrintable(sheet.problemLabel()->text()));

    sheet.saveButton()->click();
    QCOMPARE(warnings.titles, QStringList{text("No Columns Selected.")});
    QVERIFY(sheet.isVisible());
    QCOMPARE(f.itemCount(), 1);
}

void TestImportExportSheets::saveWithNoColumnTickedWarnsAndStays()
{
    ZTSheetFixture f;
    const QString path = writeFile(f.dir(), QStringLiteral("books.txt"), "Title\tAuthor\nDune\tHerbert\n");
    ZTImportSheet sheet(f.document());
    Warnings warnings;
    sheet.setWarning(warnings.hook());
    sheet.show();
    QSignalSpy imported(&sheet, &ZTImportSheet::itemsImported);

    // Nothing loaded at all is the same case.
    sheet.saveButton()->click();
    QCOMPARE(warnings.titles.size(), 1);

    QVERIFY(sheet.loadPath(path));
    for (int row = 0; row < sheet.table()->rowCount(); ++row)
        sheet.importBox(row)->click();
    sheet.saveButton()->click();
    QCOMPARE(warnings.titles, (QStringList{"No Columns Selected.", "No Columns Selected."}));
    QCOMPARE(warnings.messages.last(),
             text("You must select at least one column to import, otherwise press Cancel."));
    QVERIFY(sheet.isVisible());
    QCOMPARE(imported.size(), 0);
    QCOMPARE(f.itemCount(), 0);

    // Still in the sheet: ticking one column again imports.
    sheet.importBox(0)->click();
    sheet.saveButton()->click();
    QCOMPARE(imported.size(), 1);
    QCOMPARE(f.itemCount(), 1);
    QVERIFY(dynamic_cast<ZTBook *>(f.document().allItems().first())->authors().isEmpty());
}

void TestImportExportSheets::exportWritesTheTickedListsAsDelimitedText()
{
    ZTSheetFixture f;
    ZTItem *dune = f.add(book("Dune", {text("Frank Herbert"), text("Brian Herbert")}));
    ZTItem *hello = f.add(book("Hello, \"World\"", {text("Anon")}));
    f.add(book("Not listed"));
    ZTList *favourites = f.document().addList();
    favourites->setName(text("Favourites"));
    favourites->addItem(hello->oid());
    favourites->addItem(dune->oid()); // at the front
    ZTList *empty = f.document().addList();
    empty->setName(text("Empty"));

    ZTExportSheet sheet(f.document());
    QCOMPARE(sheet.windowTitle(), text("Export Configuration"));
    SavePanel panel{f.dir().filePath(QStringLiteral("out.csv")), {}};
    sheet.setSaveChooser(panel.hook());
    QSignalSpy keysChanged(&sheet, &ZTExportSheet::exportKeysChanged);
    sheet.show();
    QVERIFY(QTest::qWaitForWindowExposed(&sheet));

    // Books offer seven formats; the text file is the first one that runs.
    QCOMPARE(sheet.formatCount(), 7);
    QVERIFY(!sheet.formatButton(0)->isEnabled()); // cover images
    QVERIFY(sheet.formatButton(1)->isChecked());
    QCOMPARE(sheet.formatButton(1)->text(), text("Text file"));
    QCOMPARE(sheet.pages()->currentIndex(), 1);
    QVERIFY(sheet.columnBox(QStringLiteral("title"))->isChecked()); // all ticked at first

    ZTListPickerView *picker = sheet.listPicker();
    QCOMPARE(picker->allButton()->text(), text("All Books"));
    QCOMPARE(picker->selectedButton()->text(), text("Books Selected"));
    QCOMPARE(picker->listTable()->rowCount(), 2);
    QCOMPARE(picker->listTable()->item(0, 1)->text(), text("Favourites"));
    picker->selectedButton()->click();
    picker->listBox(0)->click();

    sheet.selectAllColumns(false);
    sheet.columnBox(QStringLiteral("authors"))->click();
    sheet.columnBox(QStringLiteral("title"))->click();
    choose(sheet.formatPopUp(), text("Comma Delimited"));
    choose(sheet.multiplePopUp(), text("Single Column with Delimiter"));
    choose(sheet.lineBreakPopUp(), sheet.lineBreakPopUp()->itemText(2));
    QTest::keyClicks(sheet.delimiterField(), text(" | "));
    sheet.exportButton()->click();

    QCOMPARE(panel.asked, QStringList{QStringLiteral("txt")});
    QCOMPARE(sheet.result(), int(QDialog::Accepted));
    // Columns in the offered order whatever the ticking order; the list's
    // order; a value holding the delimiter or quotes is quoted; the
    // multiple delimiter is not a reason to quote.
    QCOMPARE(QString::fromUtf8(readFile(panel.path)), text("Title,Authors\r\n"
                                                           "Dune,Frank Herbert | Brian Herbert\r\n"
                                                           "\"Hello, \"\"World\"\"\",Anon\r\n"));
    QCOMPARE(keysChanged.size(), 1);
    QCOMPARE(keysChanged.first().first().toStringList(), (QStringList{"title", "authors"}));
}

void TestImportExportSheets::exportWritesXmlThatParses()
{
    ZTSheetFixture f;
    f.add(book("Dune <1>", {text("Frank Herbert")}));
    f.add(book("Emma & Co"));
    ZTExportSheet sheet(f.document());
    SavePanel panel{f.dir().filePath(QStringLiteral("out.xml")), {}};
    sheet.setSaveChooser(panel.hook());
    QSignalSpy keysChanged(&sheet, &ZTExportSheet::exportKeysChanged);
    sheet.show();
    const int xml = 3;
    QCOMPARE(sheet.formatButton(xml)->text(), text("XML"));
    sheet.formatButton(xml)->click();
    QCOMPARE(sheet.pages()->currentIndex(), xml);
    QVERIFY(sheet.listPicker()->allButton()->isChecked());
    sheet.exportButton()->click();
    QCOMPARE(panel.asked, QStringList{QStringLiteral("xml")});
    QCOMPARE(keysChanged.size(), 0); // only the text file remembers columns

    QXmlStreamReader reader(readFile(panel.path));
    QStringList titles;
    QString root;
    while (!reader.atEnd()) {
        if (reader.readNext() != QXmlStreamReader::StartElement)
            continue;
        if (root.isEmpty())
            root = reader.name().toString();
        if (reader.name() == QLatin1String("title"))
            titles << reader.readElementText();
    }
    QVERIFY2(!reader.hasError(), qPrintable(reader.errorString()));
    QCOMPARE(root, QStringLiteral("books"));
    titles.sort();
    QCOMPARE(titles, (QStringList{"Dune <1>", "Emma & Co"}));
}

void TestImportExportSheets::exportButtonFollowsTheNumberOfItemsPicked()
{
    ZTSheetFixture f;
    {
        // An empty library has nothing to export.
        ZTExportSheet sheet(f.document());
        QVERIFY(!sheet.exportButton()->isEnabled());
    }
    ZTItem *dune = f.addTitled(text("Dune"));
    ZTList *filled = f.document().addList();
    filled->addItem(dune->oid());
    f.document().addList(); // stays empty

    ZTExportSheet sheet(f.document());
    SavePanel cancelled; // answers with no path
    sheet.setSaveChooser(cancelled.hook());
    ZTListPickerView *picker = sheet.listPicker();
    QVERIFY(sheet.exportButton()->isEnabled());
    QVERIFY(!picker->listTable()->isEnabled());
    QVERIFY(!picker->selectAllButton()->isEnabled());

    picker->selectedButton()->click();
    QVERIFY(picker->listTable()->isEnabled());
    QVERIFY(!sheet.exportButton()->isEnabled());
    picker->listBox(1)->click(); // the empty list
    QVERIFY(!sheet.exportButton()->isEnabled());
    picker->listBox(0)->click();
    QVERIFY(sheet.exportButton()->isEnabled());
    picker->selectNoneButton()->click();
    QVERIFY(!picker->listBox(0)->isChecked());
    QVERIFY(!sheet.exportButton()->isEnabled());
    picker->selectAllButton()->click();
    QVERIFY(picker->listBox(0)->isChecked() && picker->listBox(1)->isChecked());
    QVERIFY(sheet.exportButton()->isEnabled());
    picker->selectNoneButton()->click();
    picker->allButton()->click();
    QVERIFY(sheet.exportButton()->isEnabled());
    QVERIFY(!picker->listTable()->isEnabled());

    // A cancelled save panel writes nothing and leaves the sheet open.
    sheet.show();
    sheet.exportButton()->click();
    QCOMPARE(cancelled.asked.size(), 1);
    QVERIFY(sheet.isVisible());
    QCOMPARE(QDir(f.dir().path()).entryList(QDir::Files), QStringList());
}

void TestImportExportSheets::exportThatCannotBeWrittenEndsQuietly()
{
    ZTSheetFixture f;
    f.addTitled(text("Dune"));
    // A file standing where the folder should be: no export can go there.
    const QString blocker = writeFile(f.dir(), QStringLiteral("not-a-folder"), "x");
    ZTExportSheet sheet(f.document());
    SavePanel panel{blocker + QStringLiteral("/out.txt"), {}};
    sheet.setSaveChooser(panel.hook());
    QSignalSpy exported(&sheet, &ZTExportSheet::exported);
    QStringList logged;
    const ZTLog::Token token = ZTLog::addSink([&logged](const ZTLog::Line &line) { logged << line.message; });
    sheet.show();
    sheet.exportButton()->click();
    ZTLog::removeSink(token);
    // No alert: the sheet ends, nothing is reported as exported, the reason
    // goes to the log, and what stood at the path is untouched.
    QVERIFY(!sheet.isVisible());
    QCOMPARE(sheet.result(), int(QDialog::Accepted));
    QCOMPARE(exported.size(), 0);
    QCOMPARE(logged.size(), 1);
    QVERIFY(logged.first().contains(blocker));
    QCOMPARE(readFile(blocker), QByteArray("x"));
    for (QWidget *widget : QApplication::topLevelWidgets())
        QVERIFY(!qobject_cast<QMessageBox *>(widget) || !widget->isVisible());
}

void TestImportExportSheets::windowMenusOpenTheSheetsAndShowTheirResults()
{
    QTemporaryDir dir;
    ZTTestSupport::useTemporarySettings(dir);
    const QString library = dir.filePath(QStringLiteral("window.ztbooklib"));
    QVERIFY(ZTSampleLibrary::create(library, ZTMediaKind::Book, 3));
    auto document = ZTDocument::create(ZTMediaKind::Book);
    QVERIFY(document->readFromURL(library));
    ZTLibraryWindow window(std::move(document));
    window.setAttribute(Qt::WA_DeleteOnClose, false);
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    QCOMPARE(window.itemModel()->rowCount(), 3);

    QVERIFY(window.actionForTag(2009)->isEnabled());
    window.actionForTag(2009)->trigger();
    auto *choice = window.findChild<ZTImportConfigurationSheet *>();
    QVERIFY(choice);
    QVERIFY(choice->isVisible());
    choice->selectButton()->click();
    auto *import = window.findChild<ZTImportSheet *>();
    QVERIFY(import);
    QVERIFY(import->isVisible());
    const QString file = writeFile(dir, QStringLiteral("more.txt"), "Title\tPages\nAlpha\t10\nBeta\t20\n");
    QVERIFY(import->loadPath(file));
    import->saveButton()->click();
    QCOMPARE(window.itemModel()->rowCount(), 5);
    QVERIFY2(window.statisticsLabel()->text().startsWith(text("5 books")),
             qPrintable(window.statisticsLabel()->text()));
    window.setSearchText(text("Alpha"));
    QCOMPARE(window.itemModel()->rowCount(), 1); // the search knows the new items
    window.setSearchText(QString());

    window.actionForTag(2010)->trigger();
    auto *exportSheet = window.findChild<ZTExportSheet *>();
    QVERIFY(exportSheet);
    QVERIFY(exportSheet->isVisible());
    const QString out = dir.filePath(QStringLiteral("all.txt"));
    exportSheet->setSaveChooser([out](const QString &) { return out; });
    exportSheet->selectAllColumns(false);
    exportSheet->columnBox(QStringLiteral("pages"))->click();
    exportSheet->columnBox(QStringLiteral("title"))->click();
    exportSheet->exportButton()->click();
    const QStringList lines = QString::fromUtf8(readFile(out)).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    QCOMPARE(lines.size(), 6);
    QCOMPARE(lines.first(), text("Title\tPages"));
    QVERIFY(lines.contains(text("Beta\t20")));

    // The chosen columns are kept with the library's display and offered again.
    const ZTWindowDisplay stored = ZTWindowDisplay::load(library, {});
    QCOMPARE(stored.dictionary.value(QStringLiteral("fileExportKeys")).toStringList(),
             (QStringList{"title", "pages"}));
    const QPointer<ZTExportSheet> closed(exportSheet);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QVERIFY(closed.isNull());
    window.actionForTag(2010)->trigger();
    auto *again = window.findChild<ZTExportSheet *>();
    QVERIFY(again);
    QCOMPARE(again->chosenKeys(), (QStringList{"title", "pages"}));
    again->reject();
}

ZT_TEST_GUI_MAIN(TestImportExportSheets)
#include "tst_importexportsheets.moc"
