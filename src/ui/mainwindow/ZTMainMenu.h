#pragma once

#include <QHash>
#include <QString>

class QAction;
class QMenuBar;
class QWidget;

// The menu bar of a library window, made from one table of tags and titles.
// Every title goes through the "MainMenu" strings; an item whose feature a
// window does not connect stays present and disabled.
namespace ZTMainMenu {
struct Entry {
    int tag;
    const char *title;
    int menuTag;
};
// The whole table in menu order: menus (tags 2000 … 8000) and their items.
const QList<Entry> &entries();
QString titleForTag(int tag);
// Fills `bar` and answers the actions by tag. The window's own additions
// (rating, lock) carry tag 0.
QHash<int, QAction *> build(QMenuBar *bar, QWidget *owner);
} // namespace ZTMainMenu
