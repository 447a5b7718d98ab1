#pragma once

#include "library/ZTWindowDisplay.h"

#include <QList>
#include <QString>
#include <QVariantList>
#include <QVariantMap>

// A named set of item-table columns with its font size and row height. A
// library keeps its layouts as "layouts.plist" beside the store, and the user
// steps through them with View > Switch Layout.
struct ZTLayout {
    QString name;
    double fontSize = 0; // 0: the desktop's font
    double rowHeight = ZTWindowDisplay::s_defaultRowHeight;
    QList<ZTWindowDisplay::Column> columns;

    QVariantMap dictionary() const;
    static ZTLayout fromDictionary(const QVariantMap &dictionary);
    // The present table settings as a layout of the given name.
    static ZTLayout fromDisplay(const QString &name, const ZTWindowDisplay &display);
    // Puts the layout's columns, font size and row height into the display.
    void applyTo(ZTWindowDisplay &display) const;
};

// The layouts of one library and which one is in use.
class ZTLayouts {
public:
    static QString fileName() { return QStringLiteral("layouts.plist"); }
    static QList<ZTLayout> layoutsFromArray(const QVariantList &array);

    // Reads the package's file; a missing or unreadable one gives no layouts.
    static ZTLayouts load(const QString &packagePath);
    bool save(const QString &packagePath) const;

    // A library without layouts gets one, named "Layout", made from the present
    // settings. True when one was made (the caller saves at once).
    bool ensureOne(const ZTWindowDisplay &present);
    // Appends a layout named "<layout>" with the present settings; its index.
    int addLayout(const ZTWindowDisplay &present);
    // Removes the layout at the index; false for an index out of range. The
    // current one stays the same layout where it can.
    bool removeLayout(int index);
    bool renameLayout(int index, const QString &name);
    // Steps to the layout after the current one, wrapping to the first; the new index.
    int switchLayout();
    bool setCurrentIndex(int index);
    // Keeps the current layout in step with the table as the user changes it.
    void updateCurrent(const ZTWindowDisplay &present);

    const QList<ZTLayout> &layouts() const { return m_layouts; }
    int currentIndex() const { return m_current; }
    const ZTLayout *current() const;

private:
    QList<ZTLayout> m_layouts;
    int m_current = 0;
};
