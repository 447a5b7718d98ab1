#include "library/ZTItemController.h"

#include "library/ZTContacts.h"
#include "library/ZTDocument.h"
#include "library/ZTViewPipeline.h"
#include "lists/ZTList.h"
#include "model/ZTItem.h"
#include "model/ZTItemDerived.h"
#include "store/ZTManagedObjectContext.h"

#include <QDateTime>

namespace {
const QString s_lentOutFlag = QStringLiteral("lentOutFlag");
const QString s_rating = QStringLiteral("rating");
const QString s_authorRoleDicts = QStringLiteral("authorRoleDicts");
} // namespace

ZTItemController::ZTItemController(ZTViewPipeline &pipeline) : m_pipeline(pipeline) {}

ZTItemController::~ZTItemController() = default;

std::unique_ptr<ZTItemController> ZTItemController::forKind(ZTMediaKind kind, ZTViewPipeline &pipeline)
{
    switch (kind) {
    case ZTMediaKind::Book:
        return std::make_unique<ZTBookController>(pipeline);
    case ZTMediaKind::Album:
        return std::make_unique<ZTAlbumController>(pipeline);
    case ZTMediaKind::Movie:
        return std::make_unique<ZTMovieController>(pipeline);
    case ZTMediaKind::Comic:
        return std::make_unique<ZTComicController>(pipeline);
    }
    return nullptr;
}

void ZTItemController::clear()
{
    m_item = nullptr;
    m_itemDictionary.clear();
    m_isDirty = false;
    m_rating = 0;
    m_cover = {};
}

void ZTItemController::prepareToAdd()
{
    clear();
    handleCacheDictionary(m_pipeline.cacheDictionary());
    handleIsAdding(true);
}

void ZTItemController::handleItem(ZTItem *item)
{
    m_item = item;
    m_itemDictionary = item ? item->dictionary() : QVariantMap();
    if (item)
        m_itemDictionary.insert(s_lentOutFlag, item->isLentOut());
    m_rating = item ? item->rating() : 0;
    m_cover = {};
    m_isDirty = false;
    updatePreviousNextButtonState();
}

void ZTItemController::setValue(const QString &key, const QVariant &value)
{
    m_itemDictionary.insert(key, value);
    m_isDirty = true;
}

void ZTItemController::setRatingControl(int rating)
{
    m_rating = qBound(0, rating, 5);
    m_isDirty = true;
}

void ZTItemController::setCover(const QImage &image, const QByteArray &rawImageData, const QString &imageType,
                                bool isUser)
{
    m_cover.hasChanged = true;
    m_cover.hasUserImage = isUser;
    m_cover.image = image;
    m_cover.rawImageData = rawImageData;
    m_cover.imageType = imageType;
    m_isDirty = true;
}

void ZTItemController::removeCover()
{
    m_cover = {};
    m_cover.hasChanged = true;
    m_itemDictionary.remove(QStringLiteral("image"));
    m_itemDictionary.remove(QStringLiteral("imageUrl"));
    m_isDirty = true;
}

void ZTItemController::clickLentOutButton(bool on)
{
    m_itemDictionary.insert(s_lentOutFlag, on);
    if (!on)
        for (const char *key : {"lentToName", "lentToEmail", "dateLent", "dateDue"})
            m_itemDictionary.remove(QLatin1String(key));
    m_isDirty = true;
}

void ZTItemController::chooseBorrower(const QString &name)
{
    m_itemDictionary.insert(QStringLiteral("lentToName"), name);
    const QString email = ZTContacts::shared().emailForName(name);
    if (!email.isEmpty())
        m_itemDictionary.insert(QStringLiteral("lentToEmail"), email);
    m_isDirty = true;
}

void ZTItemController::prepareToSave(QVariantMap &dictionary) const
{
    Q_UNUSED(dictionary)
}

ZTItem *ZTItemController::save()
{
    ZTDocument &document = m_pipeline.document();
    const QDateTime now = QDateTime::currentDateTimeUtc();
    ZTItem *item = m_item;
    bool isNew = false;
    if (!item) {
        item = ZTItem::itemFromAttributeDictionary(document.mediaKind(), {}, document.managedObjectContext());
        if (!item)
            return nullptr;
        isNew = true;
    }
    QVariantMap dictionary = m_itemDictionary;
    prepareToSave(dictionary);
    // The sheet's switch decides about the loan below, not the generic setter.
    const QVariant lentOut = dictionary.take(s_lentOutFlag);
    dictionary.remove(s_rating);
    bool changed = item->takeAttributesFromDictionary(dictionary) || isNew;
    if (item->rating() != m_rating) {
        item->setValueForKey(m_rating, s_rating);
        changed = true;
    }
    if (m_cover.hasChanged) {
        if (m_cover.hasUserImage)
            item->replaceCover(m_cover.image, m_cover.rawImageData, {}, m_cover.imageType, true);
        else
            item->replaceCover(m_cover.image, m_itemDictionary.value(QStringLiteral("image")).toByteArray(),
                               m_itemDictionary.value(QStringLiteral("imageUrl")).toString(),
                               m_cover.imageType, false);
        changed = true;
    }
    item->updateCoverImageStatus();
    if (lentOut.isValid() && lentOut.toBool() != item->isLentOut()) {
        item->setLentOutFlag(lentOut);
        changed = true;
    }
    if (changed)
        item->setPrimitiveValueForKey(now, QStringLiteral("dateModified"));
    if (isNew) {
        document.managedObjectContext()->setOidObject(document.itemEntityName(), item->oid(), item);
        if (ZTList *main = document.mainList())
            main->addItem(item->oid());
        document.insertOid(item->oid());
    }
    if (changed) {
        if (!isNew) {
            item->setPrimitiveValueForKey(now, QStringLiteral("dateModified"));
            document.updateOid(item->oid());
        }
        m_pipeline.itemsDidChange({item->oid()});
        document.updateSmartListsWithItem(item);
        document.updateChangeCount(ZTDocument::ChangeType::Done);
    }
    m_item = nullptr;
    m_isDirty = false;
    m_cover = {};
    return item;
}

bool ZTItemController::showItemWithOid(const QString &oid)
{
    if (oid.isEmpty())
        return false;
    ZTItem *target = m_pipeline.document().itemForOid(oid);
    if (!target)
        return false;
    if (m_isDirty && m_item)
        save();
    m_isDirty = false;
    handleIsAdding(false);
    handleCacheDictionary(m_pipeline.cacheDictionary());
    handleItem(target);
    return true;
}

bool ZTItemController::showNextItem()
{
    return m_item && showItemWithOid(m_pipeline.nextOid(m_item->oid()));
}

bool ZTItemController::showPreviousItem()
{
    return m_item && showItemWithOid(m_pipeline.previousOid(m_item->oid()));
}

void ZTItemController::updatePreviousNextButtonState()
{
    const QString oid = m_item ? m_item->oid() : QString();
    m_hasPreviousOid = !oid.isEmpty() && !m_pipeline.previousOid(oid).isEmpty();
    m_hasNextOid = !oid.isEmpty() && !m_pipeline.nextOid(oid).isEmpty();
}

QVariantMap ZTBookController::authorRoleFromLocalizedDictionary()
{
    QVariantMap roles;
    for (const char *role : {"ed.", "ill.", "trans.", "ent."})
        roles.insert(ZTItemDerived::localizedRole(QLatin1String(role)), QLatin1String(role));
    return roles;
}

void ZTBookController::prepareToSave(QVariantMap &dictionary) const
{
    if (!dictionary.contains(s_authorRoleDicts))
        return;
    const QVariantMap roles = authorRoleFromLocalizedDictionary();
    QVariantList dicts = dictionary.value(s_authorRoleDicts).toList();
    for (QVariant &entry : dicts) {
        QVariantMap map = entry.toMap();
        const QString role = map.value(QStringLiteral("role")).toString();
        if (roles.contains(role)) {
            map.insert(QStringLiteral("role"), roles.value(role));
            entry = map;
        }
    }
    dictionary.insert(s_authorRoleDicts, dicts);
}
