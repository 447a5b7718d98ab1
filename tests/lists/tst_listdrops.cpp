// What may be dropped on a library's tables, and what each drop does.
#include "ListsTestLibrary.h"

#include "library/lists/ZTListDrop.h"
#include "library/lists/ZTSmartListController.h"
#include "lists/ZTList.h"
#include "lists/ZTSmartList.h"
#include "support/ZTTestMain.h"

#include <QBuffer>
#include <QImage>
#include <QtTest>

using Source = ZTDragInfo::Source;

namespace {
enum class From { ThisLibrary, OtherOfKind, OtherKind, Nowhere };

QStringList listNames(const ZTDocument &document)
{
    QStringList names;
    for (const ZTList *list : document.itemLists())
        names << QStringLiteral("%1:%2").arg(list->order()).arg(list->name());
    return names;
}

QByteArray pngBytes()
{
    QImage image(12, 16, QImage::Format_RGB32);
    image.fill(QColor(200, 40, 40));
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "PNG");
    return bytes;
}
} // namespace

Q_DECLARE_METATYPE(From)
Q_DECLARE_METATYPE(Source)
Q_DECLARE_METATYPE(ZTDropTarget)
Q_DECLARE_METATYPE(ZTDropOperation)

class TestListDrops : public QObject {
    Q_OBJECT

private slots:
    void initTestCase();
    void validation_data();
    void validation();
    void reorderingRows_data();
    void reorderingRows();
    void reorderingLists_data();
    void reorderingLists();
    void itemsOntoAListOfThisLibrary();
    void itemsFromAnotherLibraryAreCopied();
    void itemsOfAnotherKindAreRefused();
    void browserValueMakesOrFillsAList();
    void urlsGoToTheLookup();

private:
    std::unique_ptr<ListsTestLibrary> m_library, m_sameKind, m_otherKind;
};

void TestListDrops::initTestCase()
{
    m_library = std::make_unique<ListsTestLibrary>(ZTMediaKind::Book, "here");
    m_sameKind = std::make_unique<ListsTestLibrary>(ZTMediaKind::Book, "there");
    m_otherKind = std::make_unique<ListsTestLibrary>(ZTMediaKind::Movie, "movies");
    m_library->add({{"title", "one"}});
    m_library->document->addList()->setName("plain");
    ZTSmartListController::saveSmartList(*m_library->document, nullptr, {}, 0, "smart");
}

void TestListDrops::validation_data()
{
    QTest::addColumn<ZTDropTarget>("target");
    QTest::addColumn<Source>("source");
    QTest::addColumn<From>("from");
    QTest::addColumn<QString>("contents"); // "kind": the book drag type
    QTest::addColumn<QVariant>("root");
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("row");
    QTest::addColumn<ZTDropOperation>("operation");
    QTest::addColumn<QString>("state"); // search, filtered, sheet, nolookup
    QTest::addColumn<bool>("accepted");
    QTest::addColumn<ZTDropOperation>("resulting");

    const auto items = ZTDropTarget::ItemTable;
    const auto lists = ZTDropTarget::ListTable;
    const auto on = ZTDropOperation::On;
    const auto above = ZTDropOperation::Above;
    const auto whole = ZTDropOperation::WholeTable;
    const QVariant oids = QStringList{"x"};
    const QVariant tag = QVariantMap{{"title", "Fantasy"}};
    // Rows of the list table: 0 main, 1 "plain", 2 "smart".
    QTest::newRow("rows: same table goes above") << items << Source::ItemTable << From::ThisLibrary << "kind"
                                                 << oids << "" << 3 << on << "" << true << above;
    QTest::newRow("rows: refused while searching")
        << items << Source::ItemTable << From::ThisLibrary << "kind" << oids << "" << 0 << above << "search"
        << false << above;
    QTest::newRow("rows: refused on the filtered table")
        << items << Source::ItemTable << From::ThisLibrary << "kind" << oids << "" << 0 << above << "filtered"
        << false << above;
    QTest::newRow("rows: negative row") << items << Source::ItemTable << From::ThisLibrary << "kind" << oids
                                        << "" << -1 << above << "" << false << above;
    QTest::newRow("rows: from another library") << items << Source::ItemTable << From::OtherOfKind << "kind"
                                                << oids << "" << 0 << above << "" << false << above;
    QTest::newRow("rows: a list") << items << Source::ListTable << From::ThisLibrary << "DRAG_LIST_TYPE"
                                  << QVariant(1) << "" << 0 << above << "" << false << above;
    QTest::newRow("url: accepted by the lookup")
        << lists << Source::OtherApplication << From::Nowhere << "" << QVariant()
        << "https://example.org/dp/0306406152" << 1 << on << "" << true << whole;
    QTest::newRow("url: refused by the lookup")
        << lists << Source::OtherApplication << From::Nowhere << "" << QVariant()
        << "https://example.org/refuse" << 1 << on << "" << false << on;
    QTest::newRow("url: text that is no address")
        << lists << Source::OtherApplication << From::Nowhere << "" << QVariant() << "just words" << 1 << on
        << "" << false << on;
    QTest::newRow("url: no lookup") << lists << Source::OtherApplication << From::Nowhere << "" << QVariant()
                                    << "https://example.org/x" << 1 << on << "nolookup" << false << on;
    QTest::newRow("browser: on row 0")
        << lists << Source::Browser << From::ThisLibrary << "" << tag << "" << 0 << on << "" << false << on;
    QTest::newRow("browser: above row 0") << lists << Source::Browser << From::ThisLibrary << "" << tag << ""
                                          << 0 << above << "" << false << above;
    QTest::newRow("browser: above row 1") << lists << Source::Browser << From::ThisLibrary << "" << tag << ""
                                          << 1 << above << "" << true << above;
    QTest::newRow("browser: above the end") << lists << Source::Browser << From::ThisLibrary << "" << tag
                                            << "" << 3 << above << "" << true << above;
    QTest::newRow("browser: on a list")
        << lists << Source::Browser << From::ThisLibrary << "" << tag << "" << 1 << on << "" << true << on;
    QTest::newRow("browser: on a smart list")
        << lists << Source::Browser << From::ThisLibrary << "" << tag << "" << 2 << on << "" << false << on;
    QTest::newRow("browser: past the last")
        << lists << Source::Browser << From::ThisLibrary << "" << tag << "" << 3 << on << "" << false << on;
    QTest::newRow("browser: of another library")
        << lists << Source::Browser << From::OtherOfKind << "" << tag << "" << 1 << on << "" << false << on;
    QTest::newRow("lists: above row 1") << lists << Source::ListTable << From::ThisLibrary << "DRAG_LIST_TYPE"
                                        << QVariant(2) << "" << 1 << above << "" << true << above;
    QTest::newRow("lists: above the end")
        << lists << Source::ListTable << From::ThisLibrary << "DRAG_LIST_TYPE" << QVariant(1) << "" << 3
        << above << "" << true << above;
    QTest::newRow("lists: above row 0") << lists << Source::ListTable << From::ThisLibrary << "DRAG_LIST_TYPE"
                                        << QVariant(2) << "" << 0 << above << "" << false << above;
    QTest::newRow("lists: on a row") << lists << Source::ListTable << From::ThisLibrary << "DRAG_LIST_TYPE"
                                     << QVariant(2) << "" << 1 << on << "" << false << on;
    QTest::newRow("lists: the main list")
        << lists << Source::ListTable << From::ThisLibrary << "DRAG_LIST_TYPE" << QVariant(0) << "" << 2
        << above << "" << false << above;
    QTest::newRow("lists: unreadable row")
        << lists << Source::ListTable << From::ThisLibrary << "DRAG_LIST_TYPE" << QVariant("first") << "" << 2
        << above << "" << false << above;
    QTest::newRow("lists: no such row") << lists << Source::ListTable << From::ThisLibrary << "DRAG_LIST_TYPE"
                                        << QVariant(7) << "" << 1 << above << "" << false << above;
    QTest::newRow("lists: of another library")
        << lists << Source::ListTable << From::OtherOfKind << "DRAG_LIST_TYPE" << QVariant(1) << "" << 1
        << above << "" << false << above;
    QTest::newRow("items: on the main list") << lists << Source::ItemTable << From::ThisLibrary << "kind"
                                             << oids << "" << 0 << on << "" << true << on;
    QTest::newRow("items: on a list") << lists << Source::ItemTable << From::ThisLibrary << "kind" << oids
                                      << "" << 1 << on << "" << true << on;
    QTest::newRow("items: on a smart list") << lists << Source::ItemTable << From::ThisLibrary << "kind"
                                            << oids << "" << 2 << on << "" << false << on;
    QTest::newRow("items: above a list") << lists << Source::ItemTable << From::ThisLibrary << "kind" << oids
                                         << "" << 1 << above << "" << false << above;
    QTest::newRow("items: past the last") << lists << Source::ItemTable << From::ThisLibrary << "kind" << oids
                                          << "" << 3 << on << "" << false << on;
    QTest::newRow("items: another library of the kind")
        << lists << Source::ItemTable << From::OtherOfKind << "kind" << oids << "" << 1 << on << "" << true
        << on;
    QTest::newRow("items: another kind")
        << lists << Source::ItemTable << From::OtherKind << "ZT_DRAG_MOVIE_TYPE" << oids << "" << 1 << on
        << "" << false << on;
    QTest::newRow("items: while adding items") << lists << Source::ItemTable << From::ThisLibrary << "kind"
                                               << oids << "" << 1 << on << "sheet" << false << on;
    QTest::newRow("browser: while adding items") << lists << Source::Browser << From::ThisLibrary << "" << tag
                                                 << "" << 1 << above << "sheet" << false << above;
}

void TestListDrops::validation()
{
    QFETCH(ZTDropTarget, target);
    QFETCH(Source, source);
    QFETCH(From, from);
    QFETCH(QString, contents);
    QFETCH(QVariant, root);
    QFETCH(QString, text);
    QFETCH(int, row);
    QFETCH(ZTDropOperation, operation);
    QFETCH(QString, state);
    QFETCH(bool, accepted);
    QFETCH(ZTDropOperation, resulting);

    ZTListViewState view;
    view.usingSearch = state == "search";
    view.mainTabShowing = state != "filtered";
    view.addItemsSheetOpen = state == "sheet";
    if (state != "nolookup")
        view.shouldAcceptDraggedInURL = [](const QString &url) { return !url.endsWith("refuse"); };
    ZTDragInfo drag;
    drag.source = source;
    drag.document = from == From::ThisLibrary   ? m_library->document.get()
                    : from == From::OtherOfKind ? m_sameKind->document.get()
                    : from == From::OtherKind   ? m_otherKind->document.get()
                                                : nullptr;
    drag.contentsKey = contents == "kind" ? m_library->document->mediaDragType() : contents;
    drag.rootArray = root;
    drag.text = text;
    ZTListDrop drops(*m_library->document, view);
    ZTDropOperation op = operation;
    QCOMPARE(drops.validateDrop(drag, target, row, &op), accepted);
    QCOMPARE(op, resulting);
}

void TestListDrops::reorderingRows_data()
{
    QTest::addColumn<QStringList>("dragged");
    QTest::addColumn<int>("row");
    QTest::addColumn<QStringList>("expected");
    QTest::newRow("two down to the top")
        << QStringList{"d", "e"} << 1 << QStringList{"a", "d", "e", "b", "c"};
    QTest::newRow("two up to the end") << QStringList{"a", "b"} << 4 << QStringList{"c", "d", "a", "b", "e"};
    QTest::newRow("to the very end") << QStringList{"b"} << 5 << QStringList{"a", "c", "d", "e", "b"};
    QTest::newRow("to the very top") << QStringList{"e", "c"} << 0 << QStringList{"e", "c", "a", "b", "d"};
    QTest::newRow("onto its own place") << QStringList{"c"} << 2 << QStringList{"a", "b", "c", "d", "e"};
    // Rows from both sides of the target: each lands at the target row in turn,
    // so one from below goes in front of the ones already moved there.
    QTest::newRow("scattered rows") << QStringList{"a", "c", "e"} << 2
                                    << QStringList{"b", "a", "e", "c", "d"};
}

void TestListDrops::reorderingRows()
{
    QFETCH(QStringList, dragged);
    QFETCH(int, row);
    QFETCH(QStringList, expected);
    ListsTestLibrary library;
    ZTList *list = library.document->addList();
    list->setItemOids({"a", "b", "c", "d", "e"});
    ZTListViewState view;
    view.selectedListRow = 1;
    ZTDragInfo drag{
        Source::ItemTable, library.document.get(), library.document->mediaDragType(), dragged, {}};
    library.document->updateChangeCount(ZTDocument::ChangeType::Cleared);
    ZTListDrop drops(*library.document, view);
    QVERIFY(drops.acceptDrop(drag, ZTDropTarget::ItemTable, row, ZTDropOperation::Above));
    QCOMPARE(list->itemOids(), expected);
    QVERIFY(library.document->isDocumentEdited());
    QVERIFY(list->containsOid("a"));
    // While a search is in view the rows cannot move.
    view.usingSearch = true;
    QVERIFY(!drops.acceptDrop(drag, ZTDropTarget::ItemTable, 0, ZTDropOperation::Above));
    QCOMPARE(list->itemOids(), expected);
}

void TestListDrops::reorderingLists_data()
{
    QTest::addColumn<int>("sourceRow");
    QTest::addColumn<int>("targetRow");
    QTest::addColumn<QStringList>("expected");
    QTest::addColumn<bool>("changed");
    QTest::newRow("first to the end") << 1 << 4 << QStringList{"0:B", "1:C", "2:A"} << true;
    QTest::newRow("last to the top") << 3 << 1 << QStringList{"0:C", "1:A", "2:B"} << true;
    QTest::newRow("middle down one") << 2 << 4 << QStringList{"0:A", "1:C", "2:B"} << true;
    QTest::newRow("onto itself") << 2 << 2 << QStringList{"0:A", "1:B", "2:C"} << false;
    QTest::newRow("just below itself") << 2 << 3 << QStringList{"0:A", "1:B", "2:C"} << false;
}

void TestListDrops::reorderingLists()
{
    QFETCH(int, sourceRow);
    QFETCH(int, targetRow);
    QFETCH(QStringList, expected);
    QFETCH(bool, changed);
    ListsTestLibrary library;
    for (const char *name : {"A", "B", "C"})
        library.document->addList()->setName(QLatin1String(name));
    library.document->updateChangeCount(ZTDocument::ChangeType::Cleared);
    ZTListViewState view;
    ZTListDrop drops(*library.document, view);
    ZTDragInfo drag{Source::ListTable, library.document.get(), ZTDragInfo::listType, sourceRow, {}};
    QVERIFY(drops.acceptDrop(drag, ZTDropTarget::ListTable, targetRow, ZTDropOperation::Above));
    QCOMPARE(listNames(*library.document), expected);
    QCOMPARE(library.document->isDocumentEdited(), changed);
    QVERIFY(library.saveAndReopen());
    QCOMPARE(listNames(*library.document), expected);
}

void TestListDrops::itemsOntoAListOfThisLibrary()
{
    ListsTestLibrary library;
    const QString a = library.add({{"title", "a"}})->oid();
    const QString b = library.add({{"title", "b"}})->oid();
    ZTList *list = library.document->addList();
    list->setItemOids({b});
    library.document->updateChangeCount(ZTDocument::ChangeType::Cleared);
    ZTListViewState view;
    ZTListDrop drops(*library.document, view);
    ZTDragInfo drag{Source::ItemTable,
                    library.document.get(),
                    library.document->mediaDragType(),
                    QStringList{a, b, "gone"},
                    {}};
    QVERIFY(drops.acceptDrop(drag, ZTDropTarget::ListTable, 1, ZTDropOperation::On));
    QCOMPARE(list->itemOids(), QStringList({b, a})); // appended, in drag order
    QVERIFY(library.document->isDocumentEdited());
    library.document->updateChangeCount(ZTDocument::ChangeType::Cleared);
    QVERIFY(drops.acceptDrop(drag, ZTDropTarget::ListTable, 1, ZTDropOperation::On));
    QCOMPARE(list->itemOids(), QStringList({b, a}));
    QVERIFY(!library.document->isDocumentEdited());
    // On the main list nothing changes.
    QVERIFY(drops.acceptDrop(drag, ZTDropTarget::ListTable, 0, ZTDropOperation::On));
    QCOMPARE(library.document->mainList()->itemOids(), QStringList({b, a}));
    QVERIFY(!library.document->isDocumentEdited());
}

void TestListDrops::itemsFromAnotherLibraryAreCopied()
{
    ListsTestLibrary source(ZTMediaKind::Book, "source");
    ZTItem *original =
        source.add({{"title", "Lent Book"}, {"authors", QStringList{"Ann Author"}}, {"price", 4.5}});
    const QByteArray png = pngBytes();
    original->replaceCover(QImage::fromData(png), png, {}, "png", true);
    original->setLentToName("Bob Borrower");
    original->setDateDue(localDay(2030, 1, 2));
    original->setPrimitiveValueForKey(localDay(2001, 1, 1).toUTC(), "dateAdded");
    QVERIFY(source.document->saveDocument());
    source.document->updateChangeCount(ZTDocument::ChangeType::Cleared);

    ListsTestLibrary target(ZTMediaKind::Book, "target");
    const QString existing = target.add({{"title", "already here"}})->oid();
    ZTList *list = target.document->addList();
    list->setItemOids({existing});
    ZTSmartList *smart =
        ZTSmartListController::saveSmartList(*target.document, nullptr,
                                             {QVariantMap{{"lhs", "Author"},
                                                          {"lhsKey", "authors"},
                                                          {"type", "text"},
                                                          {"operator", "is"},
                                                          {"rhs", QVariantMap{{"value", "ann author"}}},
                                                          {"toMany", 1}}},
                                             0, "Ann");
    QCOMPARE(smart->count(), 0);
    target.document->updateChangeCount(ZTDocument::ChangeType::Cleared);

    ZTListViewState view;
    ZTListDrop drops(*target.document, view);
    ZTDragInfo drag{Source::ItemTable,
                    source.document.get(),
                    target.document->mediaDragType(),
                    QStringList{original->oid(), "missing"},
                    {}};
    QVERIFY(drops.acceptDrop(drag, ZTDropTarget::ListTable, 1, ZTDropOperation::On));

    QCOMPARE(target.document->mainList()->count(), 2);
    const QString copyOid = target.document->mainList()->itemOids().last(); // appended
    QVERIFY(copyOid != original->oid());
    QCOMPARE(list->itemOids(), QStringList({copyOid, existing})); // at the front
    QCOMPARE(smart->itemOids(), QStringList{copyOid});
    QVERIFY(target.document->isDocumentEdited());
    QVERIFY(target.document->oidChangeDictionary().value("oidsInserted").toStringList().contains(copyOid));
    ZTItem *copy = target.document->itemForOid(copyOid);
    QCOMPARE(copy->title(), QStringLiteral("Lent Book"));
    QCOMPARE(copy->lentToName(), QStringLiteral("Bob Borrower"));
    QVERIFY(copy->hasCoverImage());
    // A copy is added now, whenever the original was.
    QVERIFY(copy->valueForKey("dateAdded").toDateTime().date().year() > 2001);

    // The source library is not touched.
    QCOMPARE(source.document->mainList()->count(), 1);
    QVERIFY(!source.document->isDocumentEdited());

    // Saved and reopened, the copy keeps its picture and its loan.
    QVERIFY(target.saveAndReopen());
    ZTItem *reread = target.document->itemForOid(copyOid);
    QVERIFY(reread);
    QVERIFY(reread->hasCoverImage());
    QVERIFY(!reread->largestImageAvailable().isEmpty());
    QCOMPARE(reread->lentToName(), QStringLiteral("Bob Borrower"));
    QCOMPARE(static_cast<ZTSmartList *>(target.document->itemLists().at(1))->itemOids(),
             QStringList{copyOid});
}

void TestListDrops::itemsOfAnotherKindAreRefused()
{
    ListsTestLibrary movies(ZTMediaKind::Movie, "m");
    const QString movie = movies.add({{"title", "Film"}})->oid();
    ListsTestLibrary books;
    ZTListViewState view;
    ZTListDrop drops(*books.document, view);
    // Even a drag that claims the book type brings no movie in.
    for (const QString &key : {movies.document->mediaDragType(), books.document->mediaDragType()}) {
        ZTDragInfo drag{Source::ItemTable, movies.document.get(), key, QStringList{movie}, {}};
        QVERIFY(!drops.acceptDrop(drag, ZTDropTarget::ListTable, 0, ZTDropOperation::On));
    }
    QCOMPARE(books.document->mainList()->count(), 0);
    QVERIFY(books.document->mediaDragType() != movies.document->mediaDragType());
}

void TestListDrops::browserValueMakesOrFillsAList()
{
    ListsTestLibrary library;
    QStringList oids;
    for (int i = 0; i < 4; ++i)
        oids << library.add({{"title", QString::number(i)}})->oid();
    library.document->addList()->setName("first");
    ZTListViewState view;
    view.subItemOids = {oids[0], oids[1], oids[2]};
    ZTListDrop drops(*library.document, view);
    ZTDragInfo drag{Source::Browser, library.document.get(), {}, QVariantMap{{"title", "Fantasy"}}, {}};

    // Above row 1: a new list at the top, named by the tag, in the browser's order.
    QVERIFY(drops.acceptDrop(drag, ZTDropTarget::ListTable, 1, ZTDropOperation::Above));
    QCOMPARE(listNames(*library.document), QStringList({"0:Fantasy", "1:first"}));
    QCOMPARE(library.document->itemLists().at(0)->itemOids(), view.subItemOids);

    // On a list: the new oids go to the front, those present are skipped.
    ZTList *first = library.document->itemLists().at(1);
    first->setItemOids({oids[3], oids[1]});
    QVERIFY(drops.acceptDrop(drag, ZTDropTarget::ListTable, 2, ZTDropOperation::On));
    QCOMPARE(first->itemOids(), QStringList({oids[0], oids[2], oids[3], oids[1]}));

    // Onto the smart list nothing goes.
    ZTSmartListController::saveSmartList(*library.document, nullptr, {}, 1, "smart");
    QVERIFY(!drops.acceptDrop(drag, ZTDropTarget::ListTable, 3, ZTDropOperation::On));
}

void TestListDrops::urlsGoToTheLookup()
{
    ListsTestLibrary library;
    QStringList looked;
    ZTListViewState view;
    view.shouldAcceptDraggedInURL = [](const QString &) { return true; };
    view.actOnDraggedInURL = [&](const QString &url) {
        looked << url;
        return url.contains("good");
    };
    ZTListDrop drops(*library.document, view);
    ZTDragInfo good{Source::OtherApplication, nullptr, {}, {}, " https://example.org/good "};
    ZTDragInfo bad{Source::OtherApplication, nullptr, {}, {}, "https://example.org/bad"};
    QVERIFY(drops.acceptDrop(good, ZTDropTarget::ListTable, 1, ZTDropOperation::On));
    QVERIFY(!drops.acceptDrop(bad, ZTDropTarget::ListTable, 1, ZTDropOperation::On));
    QCOMPARE(looked, QStringList({"https://example.org/good", "https://example.org/bad"}));
}

ZT_TEST_GUI_MAIN(TestListDrops)
#include "tst_listdrops.moc"
