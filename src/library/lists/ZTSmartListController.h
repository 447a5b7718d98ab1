#pragma once

#include "library/lists/ZTSmartListEntryController.h"

#include <memory>
#include <vector>

class ZTDocument;
class ZTSmartList;

// The smart-list editor without its sheet: the name, the all/any choice and
// the rule rows, and the save that makes or changes the list.
class ZTSmartListController {
public:
    explicit ZTSmartListController(ZTDocument &document);
    ~ZTSmartListController();

    // Opening empty: "untitled list" and one row.
    void setUpInitialEntry();
    // Opening on a list: its name, one row per qualifier and its all/any choice.
    void handleSmartList(ZTSmartList *list);

    QString headerText() const { return m_header; }
    QString messageText() const { return m_message; }
    QString name() const { return m_name; }
    void setName(const QString &name) { m_name = name; }
    int andOrFlag() const { return m_andOrFlag; }
    void clickAndOrButton(int index) { m_andOrFlag = index == 0 ? 0 : 1; }
    ZTSmartList *smartList() const { return m_smartList; }

    int entryCount() const { return int(m_entries.size()); }
    ZTSmartListEntryController &entry(int index) { return *m_entries.at(size_t(index)); }
    // Adds a row after `afterIndex` (at the end for -1) and returns it.
    ZTSmartListEntryController &addEntry(int afterIndex = -1);
    // Drops a row; the last row cannot go.
    bool removeEntry(int index);

    // Writes the rows into the list (a new one when none is under edit),
    // computes its members and its expiry, and marks the library changed.
    // Returns the list saved.
    ZTSmartList *save();
    void cancel();

    // The core of save: what the command line uses without rows. `list` null makes a new one.
    static ZTSmartList *saveSmartList(ZTDocument &document, ZTSmartList *list, const QVariantList &qualifiers,
                                      int andOrFlag, const QString &name);

private:
    void updateRemoveButtons();

    ZTDocument &m_document;
    ZTSmartList *m_smartList = nullptr;
    std::vector<std::unique_ptr<ZTSmartListEntryController>> m_entries;
    int m_andOrFlag = 0;
    QString m_name;
    QString m_header;
    QString m_message;
};
