#include "library/ZTMultipleEdit.h"
#include "ui/sheets/ZTClearAttributesSheet.h"
#include "ui/sheets/ZTMultipleEditSheet.h"
#include "ui/sheets/ZTNameTable.h"
#include "ui/sheets/ZTSheetWidgets.h"

#include "ZTSheetFixture.h"
#include "support/ZTTestMain.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTableWidget>
#include <QtTest>

namespace {
QString text(const char *s)
{
    return QString::fromUtf8(s);
}

QVariantMap person(const char *name, const char *role)
{
    return {{QStringLiteral("name"), text(name)}, {QStringLiteral("role"), text(role)}};
}

void typeInto(QWidget *widget, const QString &value)
{
    auto *edit = qobject_cast<QLineEdit *>(widget);
    QVERIFY(edit);
    edit->setFocus();
    edit->selectAll();
    QTest::keyClick(edit, Qt::Key_Backspace);
    QTest::keyClicks(edit, value);
}

int rowOfName(ZTNameTable *table, const QString &name)
{
    for (int r = 0; r < table->table()->rowCount(); ++r)
        if (table->table()->item(r, 0)->text() == name)
            return r;
    return -1;
}

QStringList oidsOf(const QList<ZTItem *> &items)
{
    QStringList oids;
    for (const ZTItem *item : items)
        oids << item->oid();
    return oids;
}
} // namespace

class TestMultipleEditSheet : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void typingTicksAndSavesOnEveryItem();
    void untickedFieldsAreLeftAlone();
    void mixedValuesAreShown();
    void authorTableRenamesRemovesAndAddsKeepingRoles();
    void comicCharactersKeepTheirRoles();
    void escapeChangesNothing();
    void clearSheetCountsAndSkipsLockedItems_data();
    void clearSheetCountsAndSkipsLockedItems();
    void clearButtonWaitsForAChoice();
};

void TestMultipleEditSheet::typingTicksAndSavesOnEveryItem()
{
    ZTSheetFixture f;
    ZTItem *a = f.addTitled(text("a"), {{QStringLiteral("genre"), text("Poetry")}});
    ZTItem *b = f.addTitled(text("b"), {{QStringLiteral("genre"), text("Prose")}});
    ZTMultipleEditSheet sheet(f.pipeline());
    QVERIFY(sheet.prepare(oidsOf({a, b})));
    QCOMPARE(sheet.windowTitle(), text("Edit 2 books"));
    sheet.show();
    QVERIFY(QTest::qWaitForWindowExposed(&sheet));
    QVERIFY(!sheet.checkBoxForKey(QStringLiteral("genre"))->isChecked());
    typeInto(sheet.fieldForKey(QStringLiteral("genre")), text("Drama"));
    QVERIFY(sheet.checkBoxForKey(QStringLiteral("genre"))->isChecked());
    typeInto(sheet.fieldForKey(QStringLiteral("copies")), text("3"));
    auto *signedBox = qobject_cast<QCheckBox *>(sheet.fieldForKey(QStringLiteral("signedFlag")));
    signedBox->click();
    QVERIFY(sheet.checkBoxForKey(QStringLiteral("signedFlag"))->isChecked());
    QSignalSpy saved(&sheet, &ZTMultipleEditSheet::itemsSaved);
    QTest::keyClick(sheet.fieldForKey(QStringLiteral("copies")), Qt::Key_Return);
    QCOMPARE(sheet.result(), int(QDialog::Accepted));
    QCOMPARE(saved.size(), 1);
    for (ZTItem *item : {a, b}) {
        QCOMPARE(item->valueForKey(QStringLiteral("genre")).toString(), text("Drama"));
        QCOMPARE(item->valueForKey(QStringLiteral("copies")).toInt(), 3);
        QVERIFY(item->isSigned());
    }
    QVERIFY(f.document().isDocumentEdited());
}

void TestMultipleEditSheet::untickedFieldsAreLeftAlone()
{
    ZTSheetFixture f;
    ZTItem *a = f.addTitled(text("a"), {{QStringLiteral("location"), text("Shelf 1")}});
    ZTItem *b = f.addTitled(text("b"));
    ZTMultipleEditSheet sheet(f.pipeline());
    QVERIFY(sheet.prepare(oidsOf({a, b})));
    sheet.show();
    QVERIFY(QTest::qWaitForWindowExposed(&sheet));
    typeInto(sheet.fieldForKey(QStringLiteral("location")), text("Attic"));
    sheet.checkBoxForKey(QStringLiteral("location"))->click();
    QVERIFY(!sheet.checkBoxForKey(QStringLiteral("location"))->isChecked());
    // A date carries its bit: unticking the date leaves the bit alone too.
    auto *date = qobject_cast<ZTPartialDateField *>(sheet.fieldForKey(QStringLiteral("datePublished")));
    QVERIFY(date);
    typeInto(date->lineEdit(), text("1999"));
    QTest::mouseClick(date->formatButton(), Qt::LeftButton);
    QVERIFY(sheet.checkBoxForKey(QStringLiteral("datePublished"))->isChecked());
    sheet.checkBoxForKey(QStringLiteral("datePublished"))->click();
    QSignalSpy saved(&sheet, &ZTMultipleEditSheet::itemsSaved);
    sheet.save();
    QCOMPARE(saved.size(), 0);
    QCOMPARE(a->valueForKey(QStringLiteral("location")).toString(), text("Shelf 1"));
    QVERIFY(b->valueForKey(QStringLiteral("location")).toString().isEmpty());
    QCOMPARE(a->valueForKey(QStringLiteral("datePublishedBitFlag")).toInt(), 0);
    QVERIFY(!f.document().isDocumentEdited());
}

void TestMultipleEditSheet::mixedValuesAreShown()
{
    ZTSheetFixture f;
    ZTItem *a = f.addTitled(text("a"), {{QStringLiteral("genre"), text("Poetry")},
                                        {QStringLiteral("series"), text("Same")},
                                        {QStringLiteral("signedFlag"), true},
                                        {QStringLiteral("keywords"), QStringList{text("x"), text("y")}}});
    ZTItem *b = f.addTitled(text("b"), {{QStringLiteral("genre"), text("Prose")},
                                        {QStringLiteral("series"), text("Same")},
                                        {QStringLiteral("keywords"), QStringList{text("y")}}});
    ZTMultipleEditSheet sheet(f.pipeline());
    QVERIFY(sheet.prepare(oidsOf({a, b})));
    sheet.show();
    QVERIFY(sheet.isMixed(QStringLiteral("genre")));
    QVERIFY(!sheet.isMixed(QStringLiteral("series")));
    auto *genre = qobject_cast<QLineEdit *>(sheet.fieldForKey(QStringLiteral("genre")));
    QVERIFY(genre->text().isEmpty());
    QCOMPARE(genre->placeholderText(), text("Multiple values"));
    QCOMPARE(qobject_cast<QLineEdit *>(sheet.fieldForKey(QStringLiteral("series")))->text(), text("Same"));
    auto *signedBox = qobject_cast<QCheckBox *>(sheet.fieldForKey(QStringLiteral("signedFlag")));
    QCOMPARE(signedBox->checkState(), Qt::PartiallyChecked);
    QCOMPARE(qobject_cast<QLineEdit *>(sheet.fieldForKey(QStringLiteral("keywords")))->text(), text("x, y"));
    QVERIFY(sheet.isMixed(QStringLiteral("keywords")));
}

void TestMultipleEditSheet::authorTableRenamesRemovesAndAddsKeepingRoles()
{
    ZTSheetFixture f;
    ZTItem *a = f.addTitled(text("a"), {{QStringLiteral("authorRoleDicts"),
                                         QVariantList{person("Ann Old", "ed."), person("Cut Me", "")}}});
    ZTItem *b = f.addTitled(text("b"),
                            {{QStringLiteral("authorRoleDicts"), QVariantList{person("Ann Old", "trans.")}}});
    ZTMultipleEditSheet sheet(f.pipeline());
    QVERIFY(sheet.prepare(oidsOf({a, b})));
    auto *table = qobject_cast<ZTNameTable *>(sheet.fieldForKey(QStringLiteral("authors")));
    QVERIFY(table);
    const int ann = rowOfName(table, text("Ann Old"));
    const int cut = rowOfName(table, text("Cut Me"));
    QVERIFY(ann >= 0 && cut >= 0);
    QCOMPARE(table->table()->item(ann, 1)->text(), text("all"));
    QCOMPARE(table->table()->item(cut, 1)->text(), text("1 of 2"));
    table->table()->item(ann, 0)->setText(text("Ann New"));
    QVERIFY(sheet.checkBoxForKey(QStringLiteral("authors"))->isChecked());
    table->removeRow(cut);
    const int blank = table->table()->rowCount() - 1;
    table->table()->item(blank, 0)->setText(text("Zed Added"));
    sheet.save();
    QCOMPARE(a->valueForKey(QStringLiteral("authorRoleDicts")).toList(),
             (QVariantList{person("Ann New", "ed."), person("Zed Added", "")}));
    QCOMPARE(b->valueForKey(QStringLiteral("authorRoleDicts")).toList(),
             (QVariantList{person("Ann New", "trans."), person("Zed Added", "")}));
}

void TestMultipleEditSheet::comicCharactersKeepTheirRoles()
{
    ZTSheetFixture f(ZTMediaKind::Comic);
    ZTItem *a = f.addTitled(
        text("a"), {{QStringLiteral("characterRoleDicts"), QVariantList{person("Bruce", "Batman")}}});
    ZTItem *b = f.addTitled(
        text("b"), {{QStringLiteral("characterRoleDicts"), QVariantList{person("Bruce", "Batman")}}});
    ZTMultipleEditSheet sheet(f.pipeline());
    QVERIFY(sheet.prepare(oidsOf({a, b})));
    auto *table = qobject_cast<ZTNameTable *>(sheet.fieldForKey(QStringLiteral("characters")));
    QVERIFY(table);
    table->table()->item(rowOfName(table, text("Bruce")), 0)->setText(text("Bruce Wayne"));
    sheet.save();
    for (ZTItem *item : {a, b})
        QCOMPARE(item->valueForKey(QStringLiteral("characterRoleDicts")).toList(),
                 QVariantList{person("Bruce Wayne", "Batman")});
}

void TestMultipleEditSheet::escapeChangesNothing()
{
    ZTSheetFixture f;
    ZTItem *a = f.addTitled(text("a"));
    ZTItem *b = f.addTitled(text("b"));
    ZTMultipleEditSheet sheet(f.pipeline());
    QVERIFY(sheet.prepare(oidsOf({a, b})));
    sheet.show();
    QVERIFY(QTest::qWaitForWindowExposed(&sheet));
    typeInto(sheet.fieldForKey(QStringLiteral("genre")), text("Drama"));
    QTest::keyClick(sheet.fieldForKey(QStringLiteral("genre")), Qt::Key_Escape);
    QCOMPARE(sheet.result(), int(QDialog::Rejected));
    QVERIFY(a->valueForKey(QStringLiteral("genre")).toString().isEmpty());
    QVERIFY(!f.document().isDocumentEdited());
}

void TestMultipleEditSheet::clearSheetCountsAndSkipsLockedItems_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<QString>("header");
    QTest::newRow("books") << int(ZTMediaKind::Book) << text("3 books");
    QTest::newRow("albums") << int(ZTMediaKind::Album) << text("3 albums");
    QTest::newRow("movies") << int(ZTMediaKind::Movie) << text("3 movies");
    QTest::newRow("comics") << int(ZTMediaKind::Comic) << text("3 comics");
}

void TestMultipleEditSheet::clearSheetCountsAndSkipsLockedItems()
{
    QFETCH(int, kind);
    QFETCH(QString, header);
    ZTSheetFixture f{ZTMediaKind(kind)};
    const QVariantMap values{{QStringLiteral("notes"), text("n")}, {QStringLiteral("series"), text("s")}};
    ZTItem *a = f.addTitled(text("a"), values);
    ZTItem *b = f.addTitled(text("b"), values);
    QVariantMap locked = values;
    locked.insert(QStringLiteral("lockedFlag"), true);
    ZTItem *c = f.addTitled(text("c"), locked);
    ZTClearAttributesSheet sheet(f.pipeline());
    QVERIFY(sheet.prepare(oidsOf({a, b, c})));
    QCOMPARE(sheet.headerText(), header);
    QTest::mouseClick(sheet.checkBoxForKey(QStringLiteral("notes")), Qt::LeftButton);
    QTest::mouseClick(sheet.clearButton(), Qt::LeftButton);
    QCOMPARE(sheet.result(), int(QDialog::Accepted));
    for (ZTItem *item : {a, b}) {
        QVERIFY(item->valueForKey(QStringLiteral("notes")).toString().isEmpty());
        QCOMPARE(item->valueForKey(QStringLiteral("series")).toString(), text("s"));
    }
    QCOMPARE(c->valueForKey(QStringLiteral("notes")).toString(), text("n"));
}

void TestMultipleEditSheet::clearButtonWaitsForAChoice()
{
    ZTSheetFixture f;
    ZTItem *a = f.addTitled(text("a"), {{QStringLiteral("notes"), text("n")}});
    ZTClearAttributesSheet sheet(f.pipeline());
    QVERIFY(sheet.prepare({a->oid()}));
    QCOMPARE(sheet.headerText(), text("1 book"));
    QVERIFY(!sheet.clearButton()->isEnabled());
    sheet.selectAll(true);
    QVERIFY(sheet.clearButton()->isEnabled());
    QVERIFY(sheet.checkBoxForKey(QStringLiteral("title"))->isChecked());
    sheet.selectAll(false);
    QVERIFY(!sheet.clearButton()->isEnabled());
    // Nothing chosen: saving does nothing and the sheet stays.
    sheet.save();
    QCOMPARE(a->valueForKey(QStringLiteral("notes")).toString(), text("n"));
    QVERIFY(!f.document().isDocumentEdited());
}

ZT_TEST_GUI_MAIN(TestMultipleEditSheet)
#include "tst_multipleeditsheet.moc"
