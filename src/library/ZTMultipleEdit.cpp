#include "library/ZTMultipleEdit.h"

#include "base/ZTSettings.h"
#include "library/ZTAttributeTables.h"
#include "library/ZTDocument.h"
#include "library/ZTItemStatistics.h"
#include "library/ZTViewPipeline.h"
#include "model/ZTItem.h"

#include <QDateTime>

namespace {
const QString s_original = QStringLiteral("_ORIGINAL_%1");
const QString s_name = QStringLiteral("name");
const QString s_role = QStringLiteral("role");

bool hasValue(const QVariant &v)
{
    if (!v.isValid() || v.isNull())
        return false;
    if (v.typeId() == QMetaType::QString)
        return !v.toString().trimmed().isEmpty();
    return true;
}

void appendUnique(QStringList &list, const QString &value)
{
    if (!value.isEmpty() && !list.contains(value))
        list << value;
}
} // namespace

ZTMultipleItemEditController::ZTMultipleItemEditController(ZTViewPipeline &pipeline) : m_pipeline(pipeline) {}

ZTMultipleItemEditController::~ZTMultipleItemEditController() = default;

std::unique_ptr<ZTMultipleItemEditController> ZTMultipleItemEditController::forKind(ZTMediaKind kind,
                                                                                    ZTViewPipeline &pipeline)
{
    switch (kind) {
    case ZTMediaKind::Book:
        return std::make_unique<ZTMultipleBookEditController>(pipeline);
    case ZTMediaKind::Album:
        return std::make_unique<ZTMultipleAlbumEditController>(pipeline);
    case ZTMediaKind::Movie:
        return std::make_unique<ZTMultipleMovieEditController>(pipeline);
    case ZTMediaKind::Comic:
        return std::make_unique<ZTMultipleComicEditController>(pipeline);
    }
    return nullptr;
}

void ZTMultipleItemEditController::clear()
{
    m_items.clear();
    m_itemDictionary.clear();
    m_boolDictionary.clear();
    m_removeDictionary.clear();
    m_nameRows.clear();
}

void ZTMultipleItemEditController::handleItems(const QList<ZTItem *> &items)
{
    clear();
    m_items = items;
    for (const ZTEditableAttribute &attribute :
         m_pipeline.document().attributeTables().multipleEditableAttributes()) {
        if (attribute.type == QLatin1String("array")) {
            QStringList names;
            for (const ZTItem *item : items)
                for (const QString &name : ZTItem::variantToStrings(item->valueForKey(attribute.key)))
                    appendUnique(names, name);
            QList<NameRow> rows;
            for (const QString &name : std::as_const(names))
                rows.append({false, name, name});
            m_nameRows.insert(attribute.key, rows);
        } else if (attribute.type == QLatin1String("flatArray")) {
            QStringList words;
            for (const ZTItem *item : items)
                for (const QString &word : ZTItem::variantToStrings(item->valueForKey(attribute.key)))
                    appendUnique(words, word);
            m_itemDictionary.insert(attribute.key, words);
            m_itemDictionary.insert(s_original.arg(attribute.key), words);
        } else if (!items.isEmpty()) {
            // A value all items share is shown; mixed values leave the field empty.
            const QVariant first = items.first()->valueForKey(attribute.key);
            bool same = true;
            for (const ZTItem *item : items)
                same = same && item->valueForKey(attribute.key) == first;
            if (same && first.isValid())
                m_itemDictionary.insert(attribute.key, first);
        }
    }
}

void ZTMultipleItemEditController::setValue(const QString &key, const QVariant &value)
{
    m_itemDictionary.insert(key, value);
    m_boolDictionary.insert(key, true);
}

void ZTMultipleItemEditController::renameName(const QString &key, const QString &originalName,
                                              const QString &newName)
{
    QList<NameRow> &rows = m_nameRows[key];
    for (NameRow &row : rows)
        if (!row.isNew && row.originalName == originalName)
            row.newName = newName;
    m_boolDictionary.insert(key, true);
}

void ZTMultipleItemEditController::addAttributeWithKey(const QString &key, const QString &name)
{
    m_nameRows[key].append({true, name, QString()});
    m_boolDictionary.insert(key, true);
}

void ZTMultipleItemEditController::removeAttributeWithKey(const QString &key, const QString &name)
{
    QList<NameRow> &rows = m_nameRows[key];
    rows.removeIf([&](const NameRow &row) { return (row.isNew ? row.newName : row.originalName) == name; });
    appendUnique(m_removeDictionary[key], name);
    m_boolDictionary.insert(key, true);
}

QString ZTMultipleItemEditController::fateOfName(const QString &name, const QString &key) const
{
    if (m_removeDictionary.value(key).contains(name))
        return {};
    for (const NameRow &row : m_nameRows.value(key))
        if (!row.isNew && row.originalName == name && row.newName != row.originalName)
            return row.newName.trimmed();
    return name;
}

QStringList ZTMultipleItemEditController::additions(const QString &key) const
{
    QStringList names;
    for (const NameRow &row : m_nameRows.value(key))
        if (row.isNew)
            appendUnique(names, row.newName.trimmed());
    return names;
}

QStringList ZTMultipleItemEditController::mergedNames(const QStringList &current, const QString &key) const
{
    QStringList result;
    for (const QString &name : current)
        appendUnique(result, fateOfName(name, key));
    for (const QString &name : additions(key))
        appendUnique(result, name);
    return result;
}

QVariantList ZTMultipleItemEditController::mergedRoleDicts(const QVariantList &current,
                                                           const QString &key) const
{
    // Names go through the same rules; each keeps the role it had.
    QVariantList result;
    QStringList names;
    for (const QVariant &entry : current) {
        QVariantMap map = entry.toMap();
        const QString name = fateOfName(map.value(s_name).toString(), key);
        if (name.isEmpty())
            continue;
        map.insert(s_name, name);
        result << map;
        names << name;
    }
    for (const QString &name : additions(key))
        if (!names.contains(name))
            result << QVariantMap{{s_name, name}, {s_role, QString()}};
    return result;
}

QString ZTMultipleItemEditController::roleDictsKeyForKey(const QString &key) const
{
    Q_UNUSED(key)
    return {};
}

void ZTMultipleItemEditController::saveItem(ZTItem &item, const QString &key, const QString &type)
{
    if (type == QLatin1String("array")) {
        const QString roleKey = roleDictsKeyForKey(key);
        if (!roleKey.isEmpty())
            item.setValueForKey(mergedRoleDicts(item.valueForKey(roleKey).toList(), key), roleKey);
        else
            item.setValueForKey(mergedNames(ZTItem::variantToStrings(item.valueForKey(key)), key), key);
    } else if (type == QLatin1String("flatArray")) {
        const QStringList original = ZTItem::variantToStrings(m_itemDictionary.value(s_original.arg(key)));
        const QStringList wanted = ZTItem::variantToStrings(m_itemDictionary.value(key));
        QStringList result;
        for (const QString &word : ZTItem::variantToStrings(item.valueForKey(key)))
            if (!original.contains(word) || wanted.contains(word))
                appendUnique(result, word);
        for (const QString &word : wanted)
            if (!original.contains(word))
                appendUnique(result, word.trimmed());
        item.setValueForKey(result, key);
    } else {
        item.setValueForKey(m_itemDictionary.value(key), key);
    }
    if (key == QLatin1String("dateDue"))
        item.updateOverdueStatus();
}

bool ZTMultipleItemEditController::save()
{
    ZTDocument &document = m_pipeline.document();
    const QList<QPair<QString, QString>> defaults{
        {QStringLiteral("locale"),
         ZTSettings::value(ZTSettingsKey::DefaultLocale, QStringLiteral("US")).toString()},
        {QStringLiteral("priceLocale"),
         ZTSettings::value(ZTSettingsKey::DefaultCurrency, QStringLiteral("USD")).toString()},
        {QStringLiteral("pricePaidLocale"),
         ZTSettings::value(ZTSettingsKey::DefaultCurrency, QStringLiteral("USD")).toString()}};
    for (const auto &[key, code] : defaults)
        if (applies(key) && !hasValue(m_itemDictionary.value(key)))
            m_itemDictionary.insert(key, code);
    if (applies(QStringLiteral("dateUsed")) && hasValue(m_itemDictionary.value(QStringLiteral("dateUsed"))))
        setValue(QStringLiteral("usedFlag"), true);

    bool applied = false;
    for (const ZTEditableAttribute &attribute : document.attributeTables().multipleEditableAttributes()) {
        if (!applies(attribute.key))
            continue;
        for (ZTItem *item : std::as_const(m_items))
            saveItem(*item, attribute.key, attribute.type);
        applied = applied || !m_items.isEmpty();
    }
    if (applied) {
        const QDateTime now = QDateTime::currentDateTimeUtc();
        for (ZTItem *item : std::as_const(m_items)) {
            item->setPrimitiveValueForKey(now, QStringLiteral("dateModified"));
            document.updateOid(item->oid());
        }
        QStringList oids;
        for (const ZTItem *item : std::as_const(m_items))
            oids << item->oid();
        m_pipeline.itemsDidChange(oids);
        document.updateSmartListsWithItems(m_items);
        m_pipeline.updateMainCaches();
        m_pipeline.updateSubCaches();
        m_pipeline.updateItemStatistics();
        document.updateChangeCount(ZTDocument::ChangeType::Done);
    }
    m_items.clear();
    return applied;
}

QString ZTMultipleBookEditController::roleDictsKeyForKey(const QString &key) const
{
    return key == QLatin1String("authors") ? QStringLiteral("authorRoleDicts") : QString();
}

QString ZTMultipleComicEditController::roleDictsKeyForKey(const QString &key) const
{
    if (key == QLatin1String("artists"))
        return QStringLiteral("artistRoleDicts");
    if (key == QLatin1String("characters"))
        return QStringLiteral("characterRoleDicts");
    return {};
}

// ---- clearing ----

ZTClearAttributesController::ZTClearAttributesController(ZTViewPipeline &pipeline) : m_pipeline(pipeline) {}

void ZTClearAttributesController::clear()
{
    m_items.clear();
    m_chosen.clear();
}

void ZTClearAttributesController::handleItems(const QList<ZTItem *> &items)
{
    clear();
    m_items = items;
}

QString ZTClearAttributesController::headerText() const
{
    const auto nouns = ZTItemStatistics::nounsForKind(m_pipeline.document().mediaKind());
    return ZTItemStatistics::displayTextForInt(m_items.size(), nouns.itemNameSingular, nouns.itemNamePlural);
}

void ZTClearAttributesController::clickColumnMatrix(const QString &key, bool chosen)
{
    if (!m_pipeline.document().attributeTables().clearableAttributes().contains(key))
        return;
    m_chosen.removeAll(key);
    if (chosen)
        m_chosen << key;
}

void ZTClearAttributesController::selectAllCheckboxes(bool chosen)
{
    m_chosen = chosen ? m_pipeline.document().attributeTables().clearableAttributes() : QStringList();
}

QStringList ZTClearAttributesController::chosenKeys() const
{
    return m_chosen;
}

bool ZTClearAttributesController::save()
{
    if (m_chosen.isEmpty())
        return false;
    ZTDocument &document = m_pipeline.document();
    QList<ZTItem *> unlocked;
    for (ZTItem *item : std::as_const(m_items))
        if (!item->isLocked())
            unlocked << item;
    const QDateTime now = QDateTime::currentDateTimeUtc();
    QStringList oids;
    for (ZTItem *item : std::as_const(unlocked)) {
        item->clearAttributes(m_chosen);
        item->setPrimitiveValueForKey(now, QStringLiteral("dateModified"));
        document.updateOid(item->oid());
        oids << item->oid();
    }
    m_pipeline.itemsDidChange(oids);
    document.updateSmartListsWithItems(unlocked);
    m_pipeline.updateMainCaches();
    m_pipeline.updateItemStatistics();
    document.updateChangeCount(ZTDocument::ChangeType::Done);
    m_items.clear();
    return true;
}
