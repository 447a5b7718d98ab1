#include "library/lists/ZTSmartListController.h"

#include "base/ZTStringExtras.h"
#include "library/ZTDocument.h"
#include "lists/ZTListTexts.h"
#include "lists/ZTSmartList.h"
#include "model/ZTItem.h"

#include <QCoreApplication>

namespace {
QString tr(const char *text)
{
    return QCoreApplication::translate("Localizable", text);
}
} // namespace

ZTSmartListController::ZTSmartListController(ZTDocument &document) : m_document(document) {}

ZTSmartListController::~ZTSmartListController() = default;

void ZTSmartListController::setUpInitialEntry()
{
    m_smartList = nullptr;
    m_entries.clear();
    m_andOrFlag = 0;
    m_header = tr("Add Smart List");
    m_message =
        tr("Fill in the smart list criteria below and click the Save button to add the new smart list.");
    m_name = ZTListTexts::untitledList();
    addEntry();
}

void ZTSmartListController::handleSmartList(ZTSmartList *list)
{
    if (!list) {
        setUpInitialEntry();
        return;
    }
    m_smartList = list;
    m_entries.clear();
    m_header = tr("Edit Smart List");
    m_message = tr("Edit the smart list criteria below and click the Save button to save your changes.");
    m_name = list->name();
    for (const QVariant &qualifier : list->qualifiers())
        addEntry().handleQualifierDictionary(qualifier.toMap());
    // The editor always shows at least one row.
    if (m_entries.empty())
        addEntry();
    m_andOrFlag = list->shouldUseAndQualifier() ? 0 : 1;
}

ZTSmartListEntryController &ZTSmartListController::addEntry(int afterIndex)
{
    auto row =
        std::make_unique<ZTSmartListEntryController>(m_document.attributeTables().smartListDictionaryArray());
    const size_t at =
        afterIndex < 0 || size_t(afterIndex) >= m_entries.size() ? m_entries.size() : size_t(afterIndex) + 1;
    auto it = m_entries.insert(m_entries.begin() + qsizetype(at), std::move(row));
    updateRemoveButtons();
    return **it;
}

bool ZTSmartListController::removeEntry(int index)
{
    if (m_entries.size() < 2 || index < 0 || size_t(index) >= m_entries.size())
        return false;
    m_entries.erase(m_entries.begin() + index);
    updateRemoveButtons();
    return true;
}

void ZTSmartListController::updateRemoveButtons()
{
    for (auto &row : m_entries)
        row->removeEnabled = m_entries.size() >= 2;
}

ZTSmartList *ZTSmartListController::save()
{
    QVariantList qualifiers;
    for (const auto &row : m_entries)
        qualifiers << row->qualifierDictionary();
    ZTSmartList *list = saveSmartList(m_document, m_smartList, qualifiers, m_andOrFlag, m_name);
    m_smartList = nullptr;
    return list;
}

void ZTSmartListController::cancel()
{
    m_smartList = nullptr;
    m_entries.clear();
}

ZTSmartList *ZTSmartListController::saveSmartList(ZTDocument &document, ZTSmartList *list,
                                                  const QVariantList &qualifiers, int andOrFlag,
                                                  const QString &name)
{
    const bool isNew = !list;
    if (isNew)
        list = ZTSmartList::createInManagedObjectContext(document.managedObjectContext(),
                                                         int(document.itemLists().size()));
    if (!list)
        return nullptr;
    list->setQualifiers(qualifiers);
    list->setAndOrFlag(andOrFlag);
    const ZTList *main = document.mainList();
    list->handleItems(main ? document.itemsForOids(main->itemOids()) : QList<ZTItem *>());
    list->updateExpirationDate();
    // A blank name leaves the name as it was; a new list may stay without one.
    if (ZTText::containsNonWhitespace(name))
        list->setName(name);
    if (isNew) {
        list->setOrder(int(document.itemLists().size()));
        document.mutableItemLists().append(list);
    }
    document.updateChangeCount(ZTDocument::ChangeType::Done);
    return list;
}
