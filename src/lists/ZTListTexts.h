#pragma once

#include <QCoreApplication>
#include <QString>

// The texts lists show the user, in their English source form.
namespace ZTListTexts {
inline QString untitledList()
{
    return QCoreApplication::translate("Localizable", "untitled list");
}
inline QString removeListTitle()
{
    return QCoreApplication::translate("Localizable", "Remove List");
}
inline QString removeListMessage()
{
    return QCoreApplication::translate(
        "Localizable", "Are you sure you want to remove the selected list from your library?");
}
inline QString removeItemsTitle(int count)
{
    return count == 1 ? QCoreApplication::translate("Localizable", "Remove Item")
                      : QCoreApplication::translate("Localizable", "Remove Items");
}
inline QString removeItemsMessage(int count)
{
    return count == 1
               ? QCoreApplication::translate(
                     "Localizable", "Are you sure you want to remove the selected item from your library?")
               : QCoreApplication::translate(
                     "Localizable", "Are you sure you want to remove the selected items from your library?");
}
} // namespace ZTListTexts
