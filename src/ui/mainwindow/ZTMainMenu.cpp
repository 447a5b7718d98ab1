#include "ui/mainwindow/ZTMainMenu.h"

#include <QAction>
#include <QCoreApplication>
#include <QIcon>
#include <QKeySequence>
#include <QMenu>
#include <QMenuBar>

namespace {
// The application-menu items that have a place on this desktop sit in the
// menu a Linux user looks for them in: About and updates under Help,
// Preferences under Edit, Quit under File. Services, Hide and Show All have
// no meaning here.
const QList<ZTMainMenu::Entry> s_entries = {
    {2000, "File", 0},
    {2001, "New Library", 2000},
    {2002, "Open…", 2000},
    {2003, "Open Recent", 2000},
    {2005, "Close", 2000},
    {2006, "Save", 2000},
    {2007, "Save As…", 2000},
    {2008, "Revert", 2000},
    {2009, "Import…", 2000},
    {2010, "Export…", 2000},
    {2011, "Export to iPod classic…", 2000},
    {2012, "Show In Finder", 2000},
    {2013, "Show All Libraries", 2000},
    {2014, "Page Setup…", 2000},
    {2015, "Print…", 2000},
    {1009, "Quit Zettary", 2000},
    {3000, "Edit", 0},
    {3001, "Undo", 3000},
    {3002, "Redo", 3000},
    {3003, "Cut", 3000},
    {3004, "Copy", 3000},
    {3005, "Paste", 3000},
    {3006, "Delete", 3000},
    {3007, "Select All", 3000},
    {3009, "Spelling…", 3000},
    {3010, "Check Spelling", 3000},
    {3011, "Check Spelling as You Type", 3000},
    {1004, "Select Bluetooth Scanner…", 3000},
    {1003, "Preferences…", 3000},
    {4000, "Item", 0},
    {4001, "Get Info", 4000},
    {4002, "Add Item…", 4000},
    {4003, "Add Multiple Items…", 4000},
    {4004, "Remove Item", 4000},
    {4005, "Duplicate", 4000},
    {4006, "Backfill Attributes…", 4000},
    {4007, "Clear Attributes…", 4000},
    {4008, "Find Duplicates", 4000},
    {4009, "Find Unlisted", 4000},
    {4010, "Play Game…", 4000},
    {5000, "List", 0},
    {5001, "Add List", 5000},
    {5002, "Add Smart List…", 5000},
    {6000, "View", 0},
    {6001, "Hide Toolbar", 6000},
    {6002, "Customize Toolbar…", 6000},
    {6003, "List View", 6000},
    {6004, "Filter View", 6000},
    {6005, "Tag View", 6000},
    {6006, "Autoresize Columns", 6000},
    {6007, "Switch Layout", 6000},
    {6008, "Video", 6000},
    {6009, "Toggle Detail", 6000},
    {6010, "Toggle Options Panel", 6000},
    {6011, "Bluetooth", 6000},
    {6012, "Code", 6000},
    {7000, "Window", 0},
    {7001, "Minimize", 7000},
    {7002, "Bring All to Front", 7000},
    {8000, "Help", 0},
    {8001, "Zettary Help", 8000},
    {8003, "Visit Fenwright Web Site", 8000},
    {1002, "Check For New Version…", 8000},
    {1001, "About Zettary", 8000},
};

QKeySequence shortcutForTag(int tag)
{
    switch (tag) {
    case 2001:
        return QKeySequence::New;
    case 2002:
        return QKeySequence::Open;
    case 2005:
        return QKeySequence::Close;
    case 2006:
        return QKeySequence::Save;
    case 2007:
        return QKeySequence::SaveAs;
    case 2015:
        return QKeySequence::Print;
    case 1009:
        return QKeySequence::Quit;
    case 3001:
        return QKeySequence::Undo;
    case 3002:
        return QKeySequence::Redo;
    case 3003:
        return QKeySequence::Cut;
    case 3004:
        return QKeySequence::Copy;
    case 3005:
        return QKeySequence::Paste;
    case 3007:
        return QKeySequence::SelectAll;
    case 1003:
        return QKeySequence::Preferences;
    case 4001:
        return QKeySequence(QStringLiteral("Ctrl+I"));
    case 4002:
        return QKeySequence(QStringLiteral("Ctrl+Shift+N"));
    case 4004:
        return QKeySequence(QStringLiteral("Ctrl+Backspace"));
    case 4005:
        return QKeySequence(QStringLiteral("Ctrl+D"));
    case 5001:
        return QKeySequence(QStringLiteral("Ctrl+L"));
    case 6003:
        return QKeySequence(QStringLiteral("Ctrl+1"));
    case 6004:
        return QKeySequence(QStringLiteral("Ctrl+2"));
    case 6009:
        return QKeySequence(QStringLiteral("Ctrl+Shift+D"));
    case 7001:
        return QKeySequence(QStringLiteral("Ctrl+M"));
    case 8001:
        return QKeySequence::HelpContents;
    default:
        return {};
    }
}

const char *iconForTag(int tag)
{
    switch (tag) {
    case 2001:
        return "document-new";
    case 2002:
        return "document-open";
    case 2005:
        return "document-close";
    case 2006:
        return "document-save";
    case 2007:
        return "document-save-as";
    case 2008:
        return "document-revert";
    case 2009:
        return "document-import";
    case 2010:
        return "document-export";
    case 2015:
        return "document-print";
    case 1009:
        return "application-exit";
    case 3001:
        return "edit-undo";
    case 3002:
        return "edit-redo";
    case 3003:
        return "edit-cut";
    case 3004:
        return "edit-copy";
    case 3005:
        return "edit-paste";
    case 3006:
        return "edit-delete";
    case 3007:
        return "edit-select-all";
    case 1003:
        return "configure";
    case 4001:
        return "documentinfo";
    case 4002:
        return "list-add";
    case 4004:
        return "list-remove";
    case 4005:
        return "edit-copy";
    case 5001:
        return "folder-new";
    case 6009:
        return "view-split-left-right";
    case 8001:
        return "help-contents";
    case 1001:
        return "help-about";
    default:
        return nullptr;
    }
}
} // namespace

const QList<ZTMainMenu::Entry> &ZTMainMenu::entries()
{
    return s_entries;
}

QString ZTMainMenu::titleForTag(int tag)
{
    for (const Entry &entry : s_entries)
        if (entry.tag == tag)
            return QCoreApplication::translate("MainMenu", entry.title);
    return {};
}

QHash<int, QAction *> ZTMainMenu::build(QMenuBar *bar, QWidget *owner)
{
    QHash<int, QAction *> actions;
    QHash<int, QMenu *> menus;
    for (const Entry &entry : s_entries) {
        const QString title = QCoreApplication::translate("MainMenu", entry.title);
        if (entry.menuTag == 0) {
            QMenu *menu = bar->addMenu(title);
            menu->menuAction()->setData(entry.tag);
            menus.insert(entry.tag, menu);
            actions.insert(entry.tag, menu->menuAction());
            continue;
        }
        QMenu *menu = menus.value(entry.menuTag);
        if (!menu)
            continue;
        // Separators between the groups a user scans as one.
        if (entry.tag == 2005 || entry.tag == 2009 || entry.tag == 2014 || entry.tag == 1009 ||
            entry.tag == 3003 || entry.tag == 3009 || entry.tag == 1004 || entry.tag == 4004 ||
            entry.tag == 4006 || entry.tag == 4008 || entry.tag == 4010 || entry.tag == 6003 ||
            entry.tag == 6006 || entry.tag == 6008 || entry.tag == 1002)
            menu->addSeparator();
        QAction *action = menu->addAction(title);
        action->setData(entry.tag);
        action->setShortcut(shortcutForTag(entry.tag));
        if (const char *icon = iconForTag(entry.tag))
            action->setIcon(QIcon::fromTheme(QString::fromLatin1(icon)));
        action->setEnabled(false);
        owner->addAction(action);
        actions.insert(entry.tag, action);
    }
    return actions;
}
