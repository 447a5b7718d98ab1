#include "base/ZTSettings.h"
#include "library/ZTContacts.h"
#include "library/ZTItemController.h"
#include "model/ZTDateUtil.h"
#include "ui/sheets/ZTItemSheet.h"
#include "ui/sheets/ZTNameTable.h"
#include "ui/sheets/ZTSheetWidgets.h"

#include "ZTSheetFixture.h"
#include "support/ZTTestMain.h"

#include <QApplication>
#include <QBuffer>
#include <QCheckBox>
#include <QComboBox>
#include <QCompleter>
#include <QLineEdit>
#include <QMenu>
#include <QMimeData>
#include <QPushButton>
#include <QTableWidget>
#include <QtTest>

namespace {
QString text(const char *s)
{
    return QString::fromUtf8(s);
}

QLineEdit *lineEdit(ZTItemSheet &sheet, const char *key)
{
    return qobject_cast<QLineEdit *>(sheet.fieldForKey(QLatin1String(key)));
}

// Types into a line edit as a user would: focus, select all, keys.
void typeInto(QLineEdit *edit, const QString &value)
{
    QVERIFY(edit);
    edit->setFocus();
    edit->selectAll();
    QTest::keyClick(edit, Qt::Key_Backspace);
    QTest::keyClicks(edit, value);
}

void editCell(ZTNameTable *table, int row, int column, const QString &value)
{
    QTableWidgetItem *item = table->table()->item(row, column);
    QVERIFY(item);
    item->setText(value);
}

QImage redSquare()
{
    QImage image(40, 60, QImage::Format_RGB32);
    image.fill(Qt::red);
    return image;
}
} // namespace

class TestItemSheet : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void addingSavesTheFieldsIntoANewItem();
    void escapeCancelsAnAddWithoutARow();
    void aNewPriceTakesTheDefaultCurrency();
    void returnSavesAnEditedItem();
    void dateFormatButtonCyclesTheBit_data();
    void dateFormatButtonCyclesTheBit();
    void nextSavesAChangedItemFirst();
    void nextStopsAtTheEnd();
    void lendingFollowsTheSwitch();
    void choosingAContactFillsTheEmail();
    void coverIsPastedAndRemoved();
    void ratingFromTheKeyboard();
    void bookRolesShowTranslatedAndStayStored();
    void movieActorsAndComicGradeSave();
    void tabWalksTheFieldsInOrder();
};

void TestItemSheet::addingSavesTheFieldsIntoANewItem()
{
    ZTSheetFixture f;
    ZTItemSheet sheet(f.pipeline());
    sheet.prepareToAdd();
    sheet.show();
    QCOMPARE(sheet.windowTitle(), text("Add book"));
    QVERIFY(!sheet.previousButton()->isEnabled());
    QVERIFY(!sheet.nextButton()->isEnabled());

    typeInto(lineEdit(sheet, "title"), text("The Hobbit"));
    typeInto(lineEdit(sheet, "publisher"), text("Allen & Unwin"));
    typeInto(lineEdit(sheet, "keywords"), text("fantasy, dragons ,"));
    typeInto(lineEdit(sheet, "pages"), text("31x0"));
    auto *authors = qobject_cast<ZTNameTable *>(sheet.fieldForKey(QStringLiteral("authorRoleDicts")));
    QVERIFY(authors);
    editCell(authors, 0, 0, text("J. R. R. Tolkien"));
    auto *price = qobject_cast<ZTPriceField *>(sheet.fieldForKey(QStringLiteral("price")));
    QVERIFY(price);
    const QList<QAction *> currencies = price->currencyButton()->menu()->actions();
    const auto gbp = std::find_if(currencies.begin(), currencies.end(),
                                  [](QAction *a) { return a->text() == QLatin1String("GBP"); });
    QVERIFY(gbp != currencies.end());
    (*gbp)->trigger();
    QCOMPARE(price->currencyButton()->text(), text("GBP"));
    typeInto(price->lineEdit(), text("12.50"));

    QSignalSpy saved(&sheet, &ZTItemSheet::itemSaved);
    QTest::mouseClick(sheet.saveButton(), Qt::LeftButton);
    QCOMPARE(sheet.result(), int(QDialog::Accepted));
    QCOMPARE(saved.size(), 1);
    QCOMPARE(f.itemCount(), 1);
    ZTItem *item = f.document().itemForOid(saved.at(0).at(0).toString());
    QVERIFY(item);
    QCOMPARE(item->title(), text("The Hobbit"));
    QCOMPARE(item->valueForKey(QStringLiteral("publisher")).toString(), text("Allen & Unwin"));
    QCOMPARE(item->keywords(), (QStringList{text("fantasy"), text("dragons")}));
    // The validator refuses the letter: what stays is the number.
    QCOMPARE(item->valueForKey(QStringLiteral("pages")).toInt(), 310);
    QCOMPARE(item->valueForKey(QStringLiteral("authors")).toStringList(),
             QStringList{text("J. R. R. Tolkien")});
    QCOMPARE(item->valueForKey(QStringLiteral("price")).toDouble(), 12.5);
    QCOMPARE(item->priceLocale(), text("GBP"));
    QVERIFY(item->isOwned());
    QVERIFY(f.document().mainList()->itemOids().contains(item->oid()));
    QVERIFY(f.document().isDocumentEdited());
}

void TestItemSheet::escapeCancelsAnAddWithoutARow()
{
    ZTSheetFixture f;
    ZTItemSheet sheet(f.pipeline());
    sheet.prepareToAdd();
    sheet.show();
    QVERIFY(QTest::qWaitForWindowExposed(&sheet));
    typeInto(lineEdit(sheet, "title"), text("Never saved"));
    QTest::keyClick(lineEdit(sheet, "title"), Qt::Key_Escape);
    QCOMPARE(sheet.result(), int(QDialog::Rejected));
    QCOMPARE(f.itemCount(), 0);
    QVERIFY(!f.document().isDocumentEdited());
    QVERIFY(sheet.controller().itemDictionary().isEmpty());
}

void TestItemSheet::aNewPriceTakesTheDefaultCurrency()
{
    ZTSheetFixture f;
    ZTSettings::setValue(ZTSettingsKey::DefaultCurrency, QStringLiteral("EUR"));
    ZTItemSheet sheet(f.pipeline());
    sheet.prepareToAdd();
    auto *price = qobject_cast<ZTPriceField *>(sheet.fieldForKey(QStringLiteral("pricePaid")));
    QVERIFY(price);
    QCOMPARE(price->currencyButton()->text(), text("EUR"));
    typeInto(lineEdit(sheet, "title"), text("Bought in Berlin"));
    typeInto(price->lineEdit(), text("7,5"));
    sheet.saveAndClose();
    ZTItem *item = f.document().allItems().value(0);
    QVERIFY(item);
    QCOMPARE(item->pricePaidLocale(), text("EUR"));
    QCOMPARE(item->valueForKey(QStringLiteral("pricePaid")).toDouble(), 7.5);
}

void TestItemSheet::returnSavesAnEditedItem()
{
    ZTSheetFixture f;
    ZTItem *item = f.addTitled(text("Old"), {{QStringLiteral("genre"), text("Poetry")}});
    ZTItemSheet sheet(f.pipeline());
    QVERIFY(sheet.prepareToEdit(item->oid()));
    sheet.show();
    QVERIFY(QTest::qWaitForWindowExposed(&sheet));
    QCOMPARE(lineEdit(sheet, "title")->text(), text("Old"));
    QCOMPARE(lineEdit(sheet, "genre")->text(), text("Poetry"));
    typeInto(lineEdit(sheet, "title"), text("New"));
    QTest::keyClick(lineEdit(sheet, "title"), Qt::Key_Return);
    QCOMPARE(sheet.result(), int(QDialog::Accepted));
    QCOMPARE(item->title(), text("New"));
    QCOMPARE(item->valueForKey(QStringLiteral("genre")).toString(), text("Poetry"));
    QCOMPARE(f.itemCount(), 1);
}

void TestItemSheet::dateFormatButtonCyclesTheBit_data()
{
    QTest::addColumn<int>("clicks");
    QTest::addColumn<int>("bit");
    QTest::newRow("full date") << 0 << 0;
    QTest::newRow("year and month") << 1 << 1;
    QTest::newRow("year") << 2 << 2;
    QTest::newRow("round to full date") << 3 << 0;
}

void TestItemSheet::dateFormatButtonCyclesTheBit()
{
    QFETCH(int, clicks);
    QFETCH(int, bit);
    ZTSheetFixture f;
    ZTItem *item = f.addTitled(text("Dated"));
    ZTItemSheet sheet(f.pipeline());
    QVERIFY(sheet.prepareToEdit(item->oid()));
    auto *date = qobject_cast<ZTPartialDateField *>(sheet.fieldForKey(QStringLiteral("datePublished")));
    QVERIFY(date);
    const QDateTime day(QDate(2001, 3, 24), QTime(0, 0));
    typeInto(date->lineEdit(), ZTDateUtil::displayString(day, ZTDateBit::FullDate));
    for (int i = 0; i < clicks; ++i)
        QTest::mouseClick(date->formatButton(), Qt::LeftButton);
    QCOMPARE(date->dateBit().value(), bit);
    QCOMPARE(date->formatButton()->text(),
             ZTDateUtil::standardDateFormatStringForDateBit(ZTDateBit::fromStored(bit)));
    QCOMPARE(date->lineEdit()->text(), ZTDateUtil::displayString(day, ZTDateBit::fromStored(bit)));
    sheet.saveAndClose();
    QCOMPARE(item->valueForKey(QStringLiteral("datePublishedBitFlag")).toInt(), bit);
    const QDate stored = item->valueForKey(QStringLiteral("datePublished")).toDateTime().date();
    QCOMPARE(stored.year(), 2001);
    if (bit != 2)
        QCOMPARE(stored.month(), 3);
}

void TestItemSheet::nextSavesAChangedItemFirst()
{
    ZTSheetFixture f;
    ZTItem *second = f.addTitled(text("second"));
    ZTItem *first = f.addTitled(text("first"));
    ZTViewPipeline &p = f.pipeline();
    QCOMPARE(p.displayedOids().first(), first->oid());
    ZTItemSheet sheet(p);
    QVERIFY(sheet.prepareToEdit(first->oid()));
    QVERIFY(sheet.nextButton()->isEnabled());
    QVERIFY(!sheet.previousButton()->isEnabled());
    typeInto(lineEdit(sheet, "title"), text("first, changed"));
    QSignalSpy saved(&sheet, &ZTItemSheet::itemSaved);
    QTest::mouseClick(sheet.nextButton(), Qt::LeftButton);
    QCOMPARE(first->title(), text("first, changed"));
    QCOMPARE(saved.size(), 1);
    QCOMPARE(sheet.controller().item(), second);
    QCOMPARE(lineEdit(sheet, "title")->text(), text("second"));
    QVERIFY(sheet.previousButton()->isEnabled());
    QVERIFY(!sheet.nextButton()->isEnabled());
    // Unchanged: stepping back saves nothing.
    QTest::mouseClick(sheet.previousButton(), Qt::LeftButton);
    QCOMPARE(saved.size(), 1);
    QCOMPARE(sheet.controller().item(), first);
}

void TestItemSheet::nextStopsAtTheEnd()
{
    ZTSheetFixture f;
    ZTItem *only = f.addTitled(text("only"));
    ZTItemSheet sheet(f.pipeline());
    QVERIFY(sheet.prepareToEdit(only->oid()));
    typeInto(lineEdit(sheet, "title"), text("only, changed"));
    sheet.showNextItem();
    // Nothing to step to: the sheet stays on the item with its edit unsaved.
    QCOMPARE(sheet.controller().item(), only);
    QCOMPARE(only->title(), text("only"));
    QVERIFY(sheet.controller().isDirty());
}

void TestItemSheet::lendingFollowsTheSwitch()
{
    ZTSheetFixture f;
    ZTItem *item = f.addTitled(text("Lent"));
    ZTItemSheet sheet(f.pipeline());
    QVERIFY(sheet.prepareToEdit(item->oid()));
    QLineEdit *name = lineEdit(sheet, "lentToName");
    QVERIFY(!name->isEnabled());
    QTest::mouseClick(sheet.lentOutButton(), Qt::LeftButton);
    QVERIFY(name->isEnabled());
    typeInto(name, text("Ada Lovelace"));
    auto *due = qobject_cast<ZTPartialDateField *>(sheet.fieldForKey(QStringLiteral("dateDue")));
    typeInto(due->lineEdit(), ZTDateUtil::displayString(QDate(2000, 1, 2), ZTDateBit::FullDate));
    sheet.saveAndClose();
    QVERIFY(item->isLentOut());
    QCOMPARE(item->lentToName(), text("Ada Lovelace"));
    QCOMPARE(item->dateLent().date(), QDate::currentDate());
    QCOMPARE(item->dateDue().date(), QDate(2000, 1, 2));
    QVERIFY(item->isOverdue());

    QVERIFY(sheet.prepareToEdit(item->oid()));
    QCOMPARE(name->text(), text("Ada Lovelace"));
    QVERIFY(sheet.lentOutButton()->isChecked());
    QTest::mouseClick(sheet.lentOutButton(), Qt::LeftButton);
    QVERIFY(name->text().isEmpty());
    sheet.saveAndClose();
    QVERIFY(!item->isLentOut());
    QVERIFY(item->lentToName().isEmpty());
}

void TestItemSheet::choosingAContactFillsTheEmail()
{
    ZTSheetFixture f;
    QFile cards(f.dir().filePath(QStringLiteral("people.vcf")));
    QVERIFY(cards.open(QIODevice::WriteOnly));
    cards.write("BEGIN:VCARD\r\nVERSION:3.0\r\nN:Hopper;Grace;;;\r\nFN:Grace Hopper\r\n"
                "EMAIL;TYPE=INTERNET,pref:grace@example.org\r\nEND:VCARD\r\n");
    cards.close();
    ZTSettings::setValue(ZTContactsKey::path, cards.fileName());
    ZTContacts::reload();
    ZTItem *item = f.addTitled(text("Borrowed"));
    ZTItemSheet sheet(f.pipeline());
    QVERIFY(sheet.prepareToEdit(item->oid()));
    QTest::mouseClick(sheet.lentOutButton(), Qt::LeftButton);
    QLineEdit *name = lineEdit(sheet, "lentToName");
    QCompleter *completer = name->completer();
    QVERIFY(completer);
    completer->setCompletionPrefix(text("Gra"));
    QCOMPARE(completer->currentCompletion(), text("Grace Hopper"));
    name->setText(text("Grace Hopper"));
    Q_EMIT completer->activated(text("Grace Hopper"));
    QCOMPARE(lineEdit(sheet, "lentToEmail")->text(), text("grace@example.org"));
    sheet.saveAndClose();
    QCOMPARE(item->lentToName(), text("Grace Hopper"));
    QCOMPARE(item->lentToEmail(), text("grace@example.org"));
    ZTSettings::setValue(ZTContactsKey::path, QString());
    ZTContacts::reload();
}

void TestItemSheet::coverIsPastedAndRemoved()
{
    ZTSheetFixture f;
    ZTItem *item = f.addTitled(text("Covered"));
    ZTItemSheet sheet(f.pipeline());
    QVERIFY(sheet.prepareToEdit(item->oid()));
    QMimeData garbage;
    garbage.setData(QStringLiteral("image/png"), QByteArray("not a picture"));
    QVERIFY(!sheet.coverWell()->takeMimeData(&garbage));
    QMimeData data;
    data.setImageData(redSquare());
    QVERIFY(sheet.coverWell()->takeMimeData(&data));
    QVERIFY(sheet.coverWell()->removeButton()->isEnabled());
    sheet.saveAndClose();
    QVERIFY(item->hasCoverImage());
    QCOMPARE(item->image().size(), QSize(40, 60));

    QVERIFY(sheet.prepareToEdit(item->oid()));
    QVERIFY(!sheet.coverWell()->image().isNull());
    QTest::mouseClick(sheet.coverWell()->removeButton(), Qt::LeftButton);
    sheet.saveAndClose();
    QVERIFY(!item->hasCoverImage());
}

void TestItemSheet::ratingFromTheKeyboard()
{
    ZTSheetFixture f;
    ZTItem *item = f.addTitled(text("Rated"), {{QStringLiteral("rating"), 2}});
    ZTItemSheet sheet(f.pipeline());
    QVERIFY(sheet.prepareToEdit(item->oid()));
    QCOMPARE(sheet.ratingControl()->rating(), 2);
    QTest::keyClick(sheet.ratingControl(), Qt::Key_Right);
    QTest::keyClick(sheet.ratingControl(), Qt::Key_Right);
    QTest::keyClick(sheet.ratingControl(), Qt::Key_Right);
    QTest::keyClick(sheet.ratingControl(), Qt::Key_Right); // stays at five
    QCOMPARE(sheet.ratingControl()->rating(), 5);
    QTest::keyClick(sheet.ratingControl(), Qt::Key_4);
    sheet.saveAndClose();
    QCOMPARE(item->rating(), 4);
}

void TestItemSheet::bookRolesShowTranslatedAndStayStored()
{
    ZTSheetFixture f;
    const QVariantList dicts{
        QVariantMap{{QStringLiteral("name"), text("Ann Editor")}, {QStringLiteral("role"), text("ed.")}}};
    ZTItem *item = f.addTitled(text("Edited"), {{QStringLiteral("authorRoleDicts"), dicts}});
    ZTItemSheet sheet(f.pipeline());
    QVERIFY(sheet.prepareToEdit(item->oid()));
    auto *authors = qobject_cast<ZTNameTable *>(sheet.fieldForKey(QStringLiteral("authorRoleDicts")));
    QCOMPARE(authors->cellRows().size(), 1);
    editCell(authors, 1, 0, text("Bob Writer"));
    QCOMPARE(authors->cellRows().size(), 2);
    sheet.saveAndClose();
    const QVariantList stored = item->valueForKey(QStringLiteral("authorRoleDicts")).toList();
    QCOMPARE(stored.size(), 2);
    QCOMPARE(stored.at(0).toMap().value(QStringLiteral("role")).toString(), text("ed."));
    QCOMPARE(stored.at(1).toMap().value(QStringLiteral("name")).toString(), text("Bob Writer"));
}

void TestItemSheet::movieActorsAndComicGradeSave()
{
    {
        ZTSheetFixture f(ZTMediaKind::Movie);
        ZTItemSheet sheet(f.pipeline());
        sheet.prepareToAdd();
        QCOMPARE(sheet.windowTitle(), text("Add movie"));
        typeInto(lineEdit(sheet, "title"), text("Film"));
        auto *actors = qobject_cast<ZTNameTable *>(sheet.fieldForKey(QStringLiteral("actorRoleDicts")));
        QVERIFY(actors);
        editCell(actors, 0, 0, text("Harrison Ford"));
        editCell(actors, 0, 1, text("Han Solo"));
        typeInto(lineEdit(sheet, "duration"), text("121"));
        sheet.saveAndClose();
        QCOMPARE(f.itemCount(), 1);
        ZTItem *movie = f.document().allItems().first();
        QCOMPARE(movie->valueForKey(QStringLiteral("actorRoles")).toStringList(),
                 QStringList{text("Harrison Ford (Han Solo)")});
        QCOMPARE(movie->valueForKey(QStringLiteral("duration")).toInt(), 121);
    }
    {
        ZTSheetFixture f(ZTMediaKind::Comic);
        ZTItemSheet sheet(f.pipeline());
        sheet.prepareToAdd();
        typeInto(lineEdit(sheet, "title"), text("Issue"));
        auto *grade = qobject_cast<QComboBox *>(sheet.fieldForKey(QStringLiteral("grade")));
        QVERIFY(grade);
        grade->setCurrentIndex(grade->findText(text("VF+")));
        sheet.saveAndClose();
        QCOMPARE(f.document().allItems().first()->valueForKey(QStringLiteral("grade")).toString(),
                 text("VF+"));
    }
}

void TestItemSheet::tabWalksTheFieldsInOrder()
{
    ZTSheetFixture f;
    ZTItemSheet sheet(f.pipeline());
    sheet.prepareToAdd();
    sheet.show();
    QVERIFY(QTest::qWaitForWindowExposed(&sheet));
    QCOMPARE(QApplication::focusWidget(), sheet.fieldForKey(QStringLiteral("title")));
    // Tab from the title: the fields of the page come in their order.
    const QStringList order{QStringLiteral("title"), QStringLiteral("authorRoleDicts"),
                            QStringLiteral("publisher"), QStringLiteral("placePublished"),
                            QStringLiteral("datePublished")};
    QStringList reached;
    for (int i = 0; i < 12 && reached.size() < order.size(); ++i) {
        for (QWidget *w = QApplication::focusWidget(); w && w != &sheet; w = w->parentWidget()) {
            const QString key = w->objectName();
            if (order.contains(key)) {
                if (reached.isEmpty() || reached.last() != key)
                    reached << key;
                break;
            }
        }
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    }
    QCOMPARE(reached, order);

    // Typing into a cell edits it; Tab then keeps the text and leaves the table.
    auto *authors = qobject_cast<ZTNameTable *>(sheet.fieldForKey(QStringLiteral("authorRoleDicts")));
    authors->table()->setFocus();
    authors->table()->setCurrentCell(0, 0);
    QTest::keyClicks(authors->table(), text("Z"));
    QVERIFY(authors->table()->isAncestorOf(QApplication::focusWidget()));
    QTest::keyClicks(QApplication::focusWidget(), text("ola"));
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    QVERIFY(!authors->table()->isAncestorOf(QApplication::focusWidget()));
    QVERIFY(QApplication::focusWidget() != authors->table());
    QCOMPARE(authors->cellRows(), QList<QStringList>{(QStringList{text("Zola"), QString()})});
}

ZT_TEST_GUI_MAIN(TestItemSheet)
#include "tst_itemsheet.moc"
