#include "library/lists/ZTSmartListController.h"
#include "lists/ZTSmartList.h"
#include "ui/sheets/ZTSheetWidgets.h"
#include "ui/sheets/ZTSmartListRow.h"
#include "ui/sheets/ZTSmartListSheet.h"

#include "ZTSheetFixture.h"
#include "support/ZTTestMain.h"

#include <QApplication>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QToolButton>
#include <QtTest>

namespace Key = ZTQualifierKey;
using RhsView = ZTSmartListEntryController::RhsView;

namespace {
QString text(const char *s)
{
    return QString::fromUtf8(s);
}

// Picks an entry of a pop-up as the user does.
void choose(QComboBox *combo, const QString &entry)
{
    const int index = combo->findText(entry);
    QVERIFY2(index >= 0, qPrintable(entry));
    combo->setCurrentIndex(index);
    Q_EMIT combo->activated(index);
}

void typeInto(QLineEdit *edit, const QString &value)
{
    edit->setFocus();
    edit->selectAll();
    QTest::keyClick(edit, Qt::Key_Backspace);
    QTest::keyClicks(edit, value);
}

ZTSmartList *lastSmartList(ZTDocument &document)
{
    const QList<ZTSmartList *> lists = document.smartLists();
    return lists.isEmpty() ? nullptr : lists.last();
}
} // namespace

class TestSmartListSheet : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void addingShowsTheTextsAndSavesANewList();
    void rightHandViewFollowsTypeAndOperator_data();
    void rightHandViewFollowsTypeAndOperator();
    void attributeChangeEmptiesTheValueOperatorChangeKeepsIt();
    void removeButtonsKeepOneRow();
    void editingRestoresARatingRange();
    void anyAndInTheLastAreStored();
    void escapeLeavesTheLibraryAlone();
    void tabRunsAlongEachRowThenDown();
};

void TestSmartListSheet::addingShowsTheTextsAndSavesANewList()
{
    ZTSheetFixture f;
    f.addTitled(text("Dune"));
    f.addTitled(text("Emma"));
    ZTSmartListSheet sheet(f.document());
    sheet.prepareToAdd();
    sheet.show();
    QVERIFY(QTest::qWaitForWindowExposed(&sheet));
    QCOMPARE(sheet.headerLabel()->text(), text("Add Smart List"));
    QCOMPARE(
        sheet.messageLabel()->text(),
        text("Fill in the smart list criteria below and click the Save button to add the new smart list."));
    QCOMPARE(sheet.nameField()->text(), text("untitled list"));
    QCOMPARE(sheet.allAnyPopUp()->currentText(), text("all"));
    QCOMPARE(sheet.rowCount(), 1);
    ZTSmartListRow *row = sheet.row(0);
    // The attributes are offered sorted, the first one chosen.
    QStringList titles;
    for (int i = 0; i < row->lhsPopUp()->count(); ++i)
        titles << row->lhsPopUp()->itemText(i);
    QStringList sorted = titles;
    std::sort(sorted.begin(), sorted.end());
    QCOMPARE(titles, sorted);
    QCOMPARE(row->lhsPopUp()->currentIndex(), 0);

    typeInto(sheet.nameField(), text("D books"));
    choose(row->lhsPopUp(), text("Title"));
    choose(row->operatorPopUp(), text("starts with"));
    typeInto(row->valueField(), text("D"));
    QTest::keyClick(row->valueField(), Qt::Key_Return);
    QCOMPARE(sheet.result(), int(QDialog::Accepted));

    ZTSmartList *list = lastSmartList(f.document());
    QVERIFY(list);
    QCOMPARE(list->name(), text("D books"));
    QCOMPARE(list->qualifiers().size(), 1);
    const QVariantMap q = list->qualifiers().first().toMap();
    QCOMPARE(q.value(Key::lhs).toString(), text("Title"));
    QCOMPARE(q.value(Key::op).toString(), text("starts with"));
    QCOMPARE(q.value(Key::rhs).toMap().value(Key::value).toString(), text("D"));
    QCOMPARE(list->itemOids().size(), 1);
    QCOMPARE(f.document().itemForOid(list->itemOids().first())->title(), text("Dune"));
    QVERIFY(f.document().isDocumentEdited());
}

void TestSmartListSheet::rightHandViewFollowsTypeAndOperator_data()
{
    QTest::addColumn<QString>("attribute");
    QTest::addColumn<QString>("op");
    QTest::addColumn<int>("view");
    QTest::newRow("text") << text("Title") << text("contains") << int(RhsView::SingleTextField);
    QTest::newRow("integer") << text("Pages") << text("is greater than") << int(RhsView::SingleTextField);
    QTest::newRow("integer range") << text("Pages") << text("is in the range")
                                   << int(RhsView::RangeTextField);
    QTest::newRow("date") << text("Date Added") << text("is after") << int(RhsView::SingleTextField);
    QTest::newRow("date range") << text("Date Added") << text("is in the range")
                                << int(RhsView::RangeTextField);
    QTest::newRow("in the last") << text("Date Added") << text("is in the last")
                                 << int(RhsView::DateInTheLast);
    QTest::newRow("not in the last") << text("Date Added") << text("is not in the last")
                                     << int(RhsView::DateInTheLast);
    QTest::newRow("rating") << text("Rating") << text("is") << int(RhsView::SingleRating);
    QTest::newRow("rating range") << text("Rating") << text("is in the range") << int(RhsView::RangeRating);
    QTest::newRow("boolean") << text("Cover") << text("is set") << int(RhsView::None);
}

void TestSmartListSheet::rightHandViewFollowsTypeAndOperator()
{
    QFETCH(QString, attribute);
    QFETCH(QString, op);
    QFETCH(int, view);
    ZTSheetFixture f;
    ZTSmartListSheet sheet(f.document());
    sheet.prepareToAdd();
    ZTSmartListRow *row = sheet.row(0);
    choose(row->lhsPopUp(), attribute);
    choose(row->operatorPopUp(), op);
    QCOMPARE(row->rhsViewIndex(), view);
    QCOMPARE(int(row->entry().rhsView()), view);
}

void TestSmartListSheet::attributeChangeEmptiesTheValueOperatorChangeKeepsIt()
{
    ZTSheetFixture f;
    ZTSmartListSheet sheet(f.document());
    sheet.prepareToAdd();
    ZTSmartListRow *row = sheet.row(0);
    choose(row->lhsPopUp(), text("Title"));
    typeInto(row->valueField(), text("Moby"));
    choose(row->operatorPopUp(), text("is"));
    QCOMPARE(row->valueField()->text(), text("Moby"));
    choose(row->lhsPopUp(), text("Author"));
    QVERIFY(row->valueField()->text().isEmpty());

    // An integer field refuses letters while typed.
    choose(row->lhsPopUp(), text("Pages"));
    typeInto(row->valueField(), text("1a2"));
    QCOMPARE(row->valueField()->text(), text("12"));
    choose(row->operatorPopUp(), text("is in the range"));
    QCOMPARE(row->fromField()->text(), text("12"));
}

void TestSmartListSheet::removeButtonsKeepOneRow()
{
    ZTSheetFixture f;
    ZTSmartListSheet sheet(f.document());
    sheet.prepareToAdd();
    sheet.show();
    QVERIFY(QTest::qWaitForWindowExposed(&sheet));
    QVERIFY(!sheet.row(0)->removeButton()->isEnabled());
    QTest::mouseClick(sheet.row(0)->addButton(), Qt::LeftButton);
    QCOMPARE(sheet.rowCount(), 2);
    QVERIFY(sheet.row(0)->removeButton()->isEnabled());
    QVERIFY(sheet.row(1)->removeButton()->isEnabled());
    QTest::mouseClick(sheet.row(1)->removeButton(), Qt::LeftButton);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QCOMPARE(sheet.rowCount(), 1);
    QVERIFY(!sheet.row(0)->removeButton()->isEnabled());
    sheet.removeRow(0);
    QCOMPARE(sheet.rowCount(), 1);
}

void TestSmartListSheet::editingRestoresARatingRange()
{
    ZTSheetFixture f;
    const QVariantList qualifiers{
        QVariantMap{{Key::lhs, text("Rating")},
                    {Key::op, text("is in the range")},
                    {Key::type, text("rating")},
                    {Key::lhsKey, text("rating")},
                    {Key::toMany, 0},
                    {Key::rhs, QVariantMap{{Key::fromValue, text("2")}, {Key::toValue, text("4")}}}}};
    ZTSmartList *list =
        ZTSmartListController::saveSmartList(f.document(), nullptr, qualifiers, 1, text("Good"));
    QVERIFY(list);
    ZTSmartListSheet sheet(f.document());
    sheet.prepareOnList(list);
    QCOMPARE(sheet.headerLabel()->text(), text("Edit Smart List"));
    QCOMPARE(sheet.messageLabel()->text(),
             text("Edit the smart list criteria below and click the Save button to save your changes."));
    QCOMPARE(sheet.nameField()->text(), text("Good"));
    QCOMPARE(sheet.allAnyPopUp()->currentIndex(), 1);
    ZTSmartListRow *row = sheet.row(0);
    QCOMPARE(row->rhsViewIndex(), int(RhsView::RangeRating));
    QCOMPARE(row->fromStars()->rating(), 2);
    QCOMPARE(row->toStars()->rating(), 4);
    row->toStars()->setFocus();
    QTest::keyClick(row->toStars(), Qt::Key_5);
    sheet.save();
    QCOMPARE(f.document().smartLists().size(), 1);
    const QVariantMap rhs = list->qualifiers().first().toMap().value(Key::rhs).toMap();
    QCOMPARE(rhs.value(Key::fromValue).toString(), text("2"));
    QCOMPARE(rhs.value(Key::toValue).toString(), text("5"));
}

void TestSmartListSheet::anyAndInTheLastAreStored()
{
    ZTSheetFixture f;
    ZTSmartListSheet sheet(f.document());
    sheet.prepareToAdd();
    choose(sheet.allAnyPopUp(), text("any"));
    ZTSmartListRow *row = sheet.row(0);
    choose(row->lhsPopUp(), text("Date Added"));
    choose(row->operatorPopUp(), text("is in the last"));
    QCOMPARE(row->periodPopUp()->currentText(), text("days"));
    typeInto(row->numberField(), text("3"));
    choose(row->periodPopUp(), text("weeks"));
    sheet.addRowAfter(0);
    choose(sheet.row(1)->lhsPopUp(), text("Cover"));
    sheet.save();
    ZTSmartList *list = lastSmartList(f.document());
    QVERIFY(list);
    QVERIFY(!list->shouldUseAndQualifier());
    QCOMPARE(list->qualifiers().size(), 2);
    const QVariantMap rhs = list->qualifiers().first().toMap().value(Key::rhs).toMap();
    QCOMPARE(rhs.value(Key::numberValue).toString(), text("3"));
    QCOMPARE(rhs.value(Key::timePeriodValue).toString(), text("weeks"));
    QVERIFY(!list->qualifiers().last().toMap().contains(Key::rhs));
}

void TestSmartListSheet::escapeLeavesTheLibraryAlone()
{
    ZTSheetFixture f;
    ZTSmartListSheet sheet(f.document());
    sheet.prepareToAdd();
    sheet.show();
    QVERIFY(QTest::qWaitForWindowExposed(&sheet));
    typeInto(sheet.nameField(), text("Never"));
    QTest::keyClick(sheet.nameField(), Qt::Key_Escape);
    QCOMPARE(sheet.result(), int(QDialog::Rejected));
    QVERIFY(f.document().smartLists().isEmpty());
    QVERIFY(!f.document().isDocumentEdited());
}

void TestSmartListSheet::tabRunsAlongEachRowThenDown()
{
    ZTSheetFixture f;
    ZTSmartListSheet sheet(f.document());
    sheet.prepareToAdd();
    sheet.addRowAfter(0);
    sheet.show();
    QVERIFY(QTest::qWaitForWindowExposed(&sheet));
    ZTSmartListRow *first = sheet.row(0);
    ZTSmartListRow *second = sheet.row(1);
    choose(first->lhsPopUp(), text("Title"));
    sheet.allAnyPopUp()->setFocus();
    const QList<QWidget *> expected{first->lhsPopUp(),     first->operatorPopUp(), first->valueField(),
                                    first->removeButton(), first->addButton(),     second->lhsPopUp()};
    for (QWidget *next : expected) {
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        QCOMPARE(QApplication::focusWidget(), next);
    }
}

ZT_TEST_GUI_MAIN(TestSmartListSheet)
#include "tst_smartlistsheet.moc"
