#include "export/ZTListPickerController.h"

#include "base/ZTNotificationCenter.h"
#include "library/ZTAttributeTables.h"
#include "library/ZTDocument.h"
#include "lists/ZTList.h"

#include <QCoreApplication>
#include <QSet>

ZTListPickerController::ZTListPickerController(ZTDocument *document)
{
    setDocument(document);
}

void ZTListPickerController::setDocument(ZTDocument *document)
{
    m_document = document;
    m_choice = Choice::All;
    m_listDicts.clear();
    if (document)
        for (ZTList *list : document->itemLists())
            m_listDicts.append({false, list});
    changed();
}

QString ZTListPickerController::allTitle() const
{
    const QString plural = m_document ? m_document->attributeTables().mediaTypeDisplayName() : QString();
    return QCoreApplication::translate("Localizable", "All %@").replace(QLatin1String("%@"), plural);
}

QString ZTListPickerController::selectedTitle() const
{
    const QString plural = m_document ? m_document->attributeTables().mediaTypeDisplayName() : QString();
    return QCoreApplication::translate("Localizable", "%@ Selected").replace(QLatin1String("%@"), plural);
}

void ZTListPickerController::setChoice(Choice choice)
{
    m_choice = choice;
    changed();
}

void ZTListPickerController::setFlag(int row, bool flag)
{
    if (row < 0 || row >= m_listDicts.size())
        return;
    m_listDicts[row].flag = flag;
    changed();
}

bool ZTListPickerController::tickListNamed(const QString &name)
{
    for (int row = 0; row < m_listDicts.size(); ++row) {
        if (m_listDicts.at(row).list->name() == name) {
            setFlag(row, true);
            return true;
        }
    }
    return false;
}

void ZTListPickerController::selectAll()
{
    for (ListDict &dict : m_listDicts)
        dict.flag = true;
    changed();
}

void ZTListPickerController::selectNone()
{
    for (ListDict &dict : m_listDicts)
        dict.flag = false;
    changed();
}

QStringList ZTListPickerController::itemOids() const
{
    if (!m_document)
        return {};
    if (m_choice == Choice::All)
        return m_document->mainList() ? m_document->mainList()->itemOids() : QStringList();
    QStringList oids;
    QSet<QString> seen;
    for (const ListDict &dict : m_listDicts) {
        if (!dict.flag)
            continue;
        for (const QString &oid : dict.list->itemOids()) {
            if (!seen.contains(oid)) {
                seen.insert(oid);
                oids << oid;
            }
        }
    }
    return oids;
}

QList<ZTList *> ZTListPickerController::lists() const
{
    QList<ZTList *> ticked;
    if (m_choice == Choice::All)
        return ticked;
    for (const ListDict &dict : m_listDicts)
        if (dict.flag)
            ticked << dict.list;
    return ticked;
}

void ZTListPickerController::changed()
{
    ZTNotificationCenter::defaultCenter().post(ZTListPickerNotification::itemCountChanged, this);
}
