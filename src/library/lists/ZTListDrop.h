#pragma once

#include <QStringList>
#include <QVariant>

#include <functional>

class ZTDocument;

// What is being dragged. The window fills this from its pasteboard: the two
// entries "DRAG_CONTENTS_KEY" and "RootArray" travel as they are.
struct ZTDragInfo {
    enum class Source {
        OtherApplication, // no source in this program: a URL or text
        ItemTable,        // the item table of `document` (this library or another)
        ListTable,        // the list table of `document`
        Browser,          // a value of `document`'s filter browser
    };
    Source source = Source::OtherApplication;
    const ZTDocument *document = nullptr;
    QString contentsKey; // DRAG_CONTENTS_KEY: "DRAG_LIST_TYPE" or a media drag type
    QVariant rootArray;  // RootArray: a row number, an array of oids or {"title": tag}
    QString text;        // a URL or string from another application

    static inline const QString listType = QStringLiteral("DRAG_LIST_TYPE");
    // The drag of a row of the list table; row 0 (the main list) cannot be dragged.
    static bool canDragListRow(int row) { return row > 0; }
};

enum class ZTDropTarget { ItemTable, ListTable };
// On a row, above it, or (for URLs) the whole table.
enum class ZTDropOperation { On, Above, WholeTable };

// What the window shows, as the drop rules need it.
struct ZTListViewState {
    int selectedListRow = 0;
    bool usingSearch = false;
    bool mainTabShowing = true;
    bool addItemsSheetOpen = false;
    QStringList subItemOids; // the browser's selection
    // The lookup of dragged-in addresses (multiple-item add); refused when unset.
    std::function<bool(const QString &url)> shouldAcceptDraggedInURL;
    std::function<bool(const QString &url)> actOnDraggedInURL;
};

// What may be dropped on a library window's tables, and what a drop does.
class ZTListDrop {
public:
    ZTListDrop(ZTDocument &document, const ZTListViewState &state) : m_document(document), m_state(state) {}

    // Whether the drop may happen; may turn the operation into the one that
    // will be used (a reorder of rows always goes above, a URL covers the table).
    bool validateDrop(const ZTDragInfo &drag, ZTDropTarget target, int row, ZTDropOperation *operation) const;
    // Carries the drop out; false when it cannot be understood or does nothing.
    bool acceptDrop(const ZTDragInfo &drag, ZTDropTarget target, int row, ZTDropOperation operation);

private:
    bool reorderRows(const QStringList &oids, int row);
    bool reorderLists(int sourceRow, int targetRow);
    bool dropItems(const ZTDragInfo &drag, int row);
    bool dropBrowserValue(const ZTDragInfo &drag, int row, ZTDropOperation operation);

    ZTDocument &m_document;
    const ZTListViewState &m_state;
};
