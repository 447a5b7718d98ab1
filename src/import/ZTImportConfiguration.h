#pragma once

#include "model/ZTMediaKind.h"

#include <QList>
#include <QString>

// The sources a library can import from, by kind, and the choice among them.
// The sheet shows one radio button per entry; the document then runs the
// operation the entry names.
struct ZTImportSource {
    QString title;          // untranslated; the sheet shows its translation
    QString selectorString; // the document operation that starts the importer
    bool available = false; // false while that importer is not built yet
};

class ZTImportConfigurationController {
public:
    explicit ZTImportConfigurationController(ZTMediaKind kind) : m_kind(kind) {}

    // Ordered entries: "Text file" first for every kind.
    static QList<ZTImportSource> importConfigurationArray(ZTMediaKind kind);
    static QString windowTitle();

    QList<ZTImportSource> sources() const { return importConfigurationArray(m_kind); }
    // Selects the first button and clears the choice.
    void reset() { m_choice = -1; }
    // "Select": records the tag of the chosen button. A source that is not
    // available cannot be chosen and leaves the choice as it was.
    bool select(int tag);
    int choice() const { return m_choice; }
    // The operation of the chosen entry, null when nothing valid is chosen.
    QString selectorString() const;

private:
    ZTMediaKind m_kind;
    int m_choice = -1;
};

namespace ZTImportSelector {
inline const QString file = QStringLiteral("importItemsFromFile");
inline const QString b1 = QStringLiteral("importItemsFromB1");
inline const QString pd = QStringLiteral("importItemsFromPD");
inline const QString bk = QStringLiteral("importItemsFromBK");
inline const QString dl = QStringLiteral("importItemsFromDL");
} // namespace ZTImportSelector
