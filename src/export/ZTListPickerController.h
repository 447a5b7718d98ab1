#pragma once

#include <QList>
#include <QString>
#include <QStringList>

class ZTDocument;
class ZTList;

// What to export: every item, or the items of the ticked lists. Each change
// posts "ZTListPickerControllerItemCountChanged" with this picker as object.
class ZTListPickerController {
public:
    enum class Choice { All = 0, SelectedLists = 1 };
    struct ListDict {
        bool flag = false;
        ZTList *list = nullptr;
    };

    explicit ZTListPickerController(ZTDocument *document = nullptr);
    void setDocument(ZTDocument *document);

    // "All Books" and "Books Selected", by the kind's plural name.
    QString allTitle() const;
    QString selectedTitle() const;

    Choice choice() const { return m_choice; }
    void setChoice(Choice choice);
    // The table of lists, in the document's order; disabled under "All".
    const QList<ListDict> &listDicts() const { return m_listDicts; }
    bool listsEnabled() const { return m_choice == Choice::SelectedLists; }
    void setFlag(int row, bool flag);
    // Ticks the list of that name; false when the document has none.
    bool tickListNamed(const QString &name);
    void selectAll();
    void selectNone();

    // Under "All" the main list's oids in order; otherwise the ticked lists'
    // oids, each once, in the order first met.
    QStringList itemOids() const;
    int numberOfItemsSelected() const { return int(itemOids().size()); }
    bool exportAll() const { return m_choice == Choice::All; }
    QList<ZTList *> lists() const;

private:
    void changed();

    ZTDocument *m_document = nullptr;
    Choice m_choice = Choice::All;
    QList<ListDict> m_listDicts;
};

namespace ZTListPickerNotification {
inline const QString itemCountChanged = QStringLiteral("ZTListPickerControllerItemCountChanged");
}
