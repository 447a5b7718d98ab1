#pragma once

#include <QString>
#include <QStringList>
#include <QVariantMap>

// The per-library window state kept beside the store as "display.plist":
// columns and their widths, row height, font size, the detail panel. It is
// saved apart from the store, so resizing a column needs no library save.
class ZTWindowDisplay {
public:
    struct Column {
        QString identifier;
        double width = 100.0;
    };

    static QString fileName() { return QStringLiteral("display.plist"); }
    // The array form of columns (maps of "identifier" and "width"), shared with layouts.
    static QList<Column> columnsFromArray(const QVariantList &array);
    static QVariantList arrayFromColumns(const QList<Column> &columns);
    static constexpr double s_defaultRowHeight = 62.0;

    // Reads the package's file; anything missing or unreadable keeps the defaults.
    static ZTWindowDisplay load(const QString &packagePath, const QList<Column> &standardColumns);
    bool save(const QString &packagePath) const;

    QList<Column> columns;
    double rowHeight = s_defaultRowHeight;
    double fontSize = 0; // 0: the desktop's font
    bool isDetailPanelOpen = false;
    // The window's place and size (the window system's own form, as text),
    // the width of the list column, and the layout in use.
    QString frameString;
    double splitViewWidth = 0;
    int currentLayout = 0;
    // Keys this program does not use yet travel through unchanged.
    QVariantMap dictionary;
};
