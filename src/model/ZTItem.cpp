#include "model/ZTItem.h"

#include "model/ZTItemDerived.h"
#include "model/ZTLendingContext.h"
#include "model/ZTLocale.h"
#include "model/ZTSharedRows.h"
#include "store/ZTImage.h"
#include "store/ZTManagedObjectContext.h"
#include "store/ZTOid.h"
#include "store/ZTPropertyList.h"

#include <QTimeZone>

namespace {
const QString s_toLocale = QStringLiteral("toLocale");
const QString s_toPriceLocale = QStringLiteral("toPriceLocale");
const QString s_toPricePaidLocale = QStringLiteral("toPricePaidLocale");
const QString s_toCoverImage = QStringLiteral("toCoverImage");
const QString s_toLendingContext = QStringLiteral("toLendingContext");
const QString s_toKeywordData = QStringLiteral("toKeywordData");
const QString s_keywordEntity = QStringLiteral("ZTKeyword");
const QString s_name = QStringLiteral("name");
const QString s_role = QStringLiteral("role");
const QString s_code = QStringLiteral("code");

QStringList toStringList(const QVariant &value)
{
    return ZTItem::variantToStrings(value);
}
} // namespace

QStringList ZTItem::variantToStrings(const QVariant &value)
{
    QStringList result;
    if (value.typeId() == QMetaType::QStringList)
        return value.toStringList();
    if (value.typeId() == QMetaType::QString) {
        const QString s = value.toString();
        if (!s.isEmpty())
            result << s;
        return result;
    }
    for (const QVariant &v : value.toList())
        if (v.canConvert<QString>())
            result << v.toString();
    return result;
}

namespace {

template <auto Field> QVariant transientGet(const ZTItem &item)
{
    const ZTItem::Transient *t = item.transientIfAny();
    if (!t || (t->*Field).isNull())
        return {};
    return QVariant(t->*Field);
}

template <auto Field> void transientSet(ZTItem &item, const QVariant &value)
{
    using Value = std::remove_reference_t<decltype(item.transient().*Field)>;
    item.transient().*Field = value.value<Value>();
}

QDateTime toDateTime(const QVariant &value)
{
    static const ZTAttribute dateAttribute{QStringLiteral("date"), ZTAttributeType::Date, {}, {}, 0};
    return ZTManagedObject::normalized(dateAttribute, value).toDateTime();
}
} // namespace

ZTItem::ZTItem() = default;
ZTItem::~ZTItem() = default;

ZTItem::Transient &ZTItem::transient()
{
    if (!m_transient)
        m_transient = std::make_unique<Transient>();
    return *m_transient;
}

ZTItem *ZTItem::itemFromAttributeDictionary(ZTMediaKind kind, const QVariantMap &dictionary,
                                            ZTManagedObjectContext *context)
{
    if (!context)
        return nullptr;
    auto *item = static_cast<ZTItem *>(context->insertNewObject(ZTMediaKinds::itemEntityName(kind)));
    if (item)
        item->takeAttributesFromDictionary(dictionary);
    return item;
}

void ZTItem::awakeFromInsert()
{
    ZTManagedObject::awakeFromInsert();
    const QDateTime now = QDateTime::currentDateTimeUtc();
    setPrimitiveValueForKey(ZTOid::uuid(), ZTItemKey::oid);
    setPrimitiveValueForKey(now, ZTItemKey::dateAdded);
    setPrimitiveValueForKey(now, ZTItemKey::dateModified);
    ZTManagedObjectContext *context = managedObjectContext();
    setToOneForKey(s_toLocale, ZTLocale::defaultLocaleInManagedObjectContext(context));
    setToOneForKey(s_toPriceLocale, ZTPriceLocale::defaultPriceLocaleInManagedObjectContext(context));
    setToOneForKey(s_toPricePaidLocale, ZTPriceLocale::defaultPricePaidLocaleInManagedObjectContext(context));
    setKeywordOids({});
    decodeBlobs();
    updateAttributes();
}

void ZTItem::awakeFromFetch()
{
    m_keywordOids = decodeOidBlob(s_toKeywordData, s_keywordEntity);
    decodeBlobs();
    ZTManagedObjectContext *context = managedObjectContext();
    // Rows from older versions may lack a currency; giving them one is a change.
    if (!toOneForKey(s_toPriceLocale))
        setToOneForKey(s_toPriceLocale, ZTPriceLocale::defaultPriceLocaleInManagedObjectContext(context));
    if (!toOneForKey(s_toPricePaidLocale))
        setToOneForKey(s_toPricePaidLocale,
                       ZTPriceLocale::defaultPricePaidLocaleInManagedObjectContext(context));
    updateAttributes();
}

QStringList ZTItem::decodeOidBlob(const QString &blobKey, const QString &entityName)
{
    const QByteArray data = primitiveValueForKey(blobKey).toByteArray();
    forgetPrimitiveValueForKey(blobKey);
    if (data.isEmpty())
        return {};
    QStringList oids = ZTPropertyList::stringArray(data);
    if (ZTManagedObjectContext *context = managedObjectContext()) {
        const auto table = context->oidObjectDictionary().constFind(entityName);
        if (table != context->oidObjectDictionary().constEnd()) {
            for (QString &oid : oids) {
                const auto row = table->constFind(oid);
                if (row != table->constEnd())
                    oid = row.key();
            }
        }
    }
    return oids;
}

void ZTItem::storeOidArray(QStringList &member, const QStringList &oids, const QString &blobKey)
{
    if (ZTManagedObjectContext *context = managedObjectContext(); context && member != oids)
        context->noteSharedNamesChanged();
    member = oids;
    touchPrimitiveValueForKey(blobKey);
    for (const auto &pending : m_unwrittenArrays)
        if (pending.first == &blobKey)
            return;
    m_unwrittenArrays.emplace_back(&blobKey, &member);
}

void ZTItem::willSave()
{
    for (const auto &[key, oids] : m_unwrittenArrays)
        setPrimitiveValueForKey(ZTPropertyList::serializeStringArray(*oids), *key);
    m_unwrittenArrays.clear();
    m_unwrittenArrays.shrink_to_fit();
}

void ZTItem::didSave()
{
    for (const char *key : {"toKeywordData", "toAuthorData", "toSubjectData", "toArtistData", "toTrackData",
                            "toDirectorData", "toActorRoleData", "toStoryData", "toCharacterData"})
        forgetPrimitiveValueForKey(QLatin1String(key));
}

// ---- derived values ----

void ZTItem::updateAttributes()
{
    updateTitleWithoutLeadingArticle();
    updateOverdueStatus();
    updateCoverImageStatus();
}

void ZTItem::updateTitleWithoutLeadingArticle()
{
    m_titleWithoutLeadingArticle = ZTItemDerived::titleWithoutLeadingArticle(title(), locale());
}

void ZTItem::updateOverdueStatus()
{
    const QDateTime due = dateDue();
    m_overdueFlag = due.isValid() && ZTItemDerived::isOverdue(due.toLocalTime().date());
}

void ZTItem::updateCoverImageStatus()
{
    m_hasCoverImageFlag = toOneForKey(s_toCoverImage) != nullptr;
}

QString ZTItem::title() const
{
    static thread_local ZTSlotMemo memo;
    return primitiveValueForKey(ZTItemKey::title, memo).toString();
}

void ZTItem::setTitle(const QString &title)
{
    setPrimitiveValueForKey(title, ZTItemKey::title);
    updateTitleWithoutLeadingArticle();
}

QVariant ZTItem::year() const
{
    static thread_local ZTSlotMemo memo;
    const QDateTime d = primitiveValueForKey(QStringLiteral("datePublished"), memo).toDateTime();
    return d.isValid() ? QVariant(d.toUTC().date().year()) : QVariant();
}

QVariant ZTItem::originalYear() const
{
    static thread_local ZTSlotMemo memo;
    const QDateTime d = primitiveValueForKey(QStringLiteral("originalDatePublished"), memo).toDateTime();
    return d.isValid() ? QVariant(d.toUTC().date().year()) : QVariant();
}

bool ZTItem::isOwned() const
{
    static thread_local ZTSlotMemo memo;
    return primitiveValueForKey(QStringLiteral("ownedFlag"), memo).toBool();
}
bool ZTItem::isLocked() const
{
    static thread_local ZTSlotMemo memo;
    return primitiveValueForKey(QStringLiteral("lockedFlag"), memo).toBool();
}
bool ZTItem::isSigned() const
{
    static thread_local ZTSlotMemo memo;
    return primitiveValueForKey(QStringLiteral("signedFlag"), memo).toBool();
}
bool ZTItem::isUsed() const
{
    static thread_local ZTSlotMemo memo;
    return primitiveValueForKey(QStringLiteral("usedFlag"), memo).toBool();
}
int ZTItem::rating() const
{
    static thread_local ZTSlotMemo memo;
    return primitiveValueForKey(QStringLiteral("rating"), memo).toInt();
}

// ---- locales ----

QString ZTItem::locale() const
{
    static thread_local ZTSlotMemo memo;
    static thread_local ZTSlotMemo codeMemo;
    ZTManagedObject *row = toOneForKey(s_toLocale, memo);
    return row ? row->primitiveValueForKey(s_code, codeMemo).toString() : QString();
}

ZTManagedObject *ZTItem::priceLocaleRow() const
{
    static thread_local ZTSlotMemo memo;
    ZTManagedObject *row = toOneForKey(s_toPriceLocale, memo);
    return row ? row : ZTPriceLocale::defaultPriceLocaleInManagedObjectContext(managedObjectContext());
}

ZTManagedObject *ZTItem::pricePaidLocaleRow() const
{
    static thread_local ZTSlotMemo memo;
    ZTManagedObject *row = toOneForKey(s_toPricePaidLocale, memo);
    return row ? row : ZTPriceLocale::defaultPricePaidLocaleInManagedObjectContext(managedObjectContext());
}

QString ZTItem::localeCodeOfRow(const ZTManagedObject *row)
{
    static thread_local ZTSlotMemo memo;
    return row ? row->primitiveValueForKey(s_code, memo).toString() : QString();
}

QString ZTItem::priceLocale() const
{
    return localeCodeOfRow(priceLocaleRow());
}

QString ZTItem::pricePaidLocale() const
{
    return localeCodeOfRow(pricePaidLocaleRow());
}

void ZTItem::setLocale(const QString &code)
{
    const QString c = code.trimmed();
    setToOneForKey(s_toLocale,
                   c.isEmpty() ? nullptr : ZTLocale::localeForLocaleCode(c, managedObjectContext()));
}

void ZTItem::setPriceLocale(const QString &code)
{
    const QString c = code.trimmed();
    setToOneForKey(s_toPriceLocale,
                   c.isEmpty() ? nullptr
                               : ZTPriceLocale::priceLocaleForPriceLocaleCode(c, managedObjectContext()));
}

void ZTItem::setPricePaidLocale(const QString &code)
{
    const QString c = code.trimmed();
    setToOneForKey(s_toPricePaidLocale,
                   c.isEmpty() ? nullptr
                               : ZTPriceLocale::priceLocaleForPriceLocaleCode(c, managedObjectContext()));
}

QString ZTItem::priceString() const
{
    const QVariant v = primitiveValueForKey(QStringLiteral("price"));
    if (!v.isValid())
        return {};
    const QString code = priceLocale();
    return ZTItemDerived::formatMoney(v.toDouble(), code.isEmpty() ? QStringLiteral("USD") : code);
}

QString ZTItem::pricePaidString() const
{
    const QVariant v = primitiveValueForKey(QStringLiteral("pricePaid"));
    if (!v.isValid())
        return {};
    const QString code = pricePaidLocale();
    return ZTItemDerived::formatMoney(v.toDouble(), code.isEmpty() ? QStringLiteral("USD") : code);
}

// ---- keywords and shared names ----

QStringList ZTItem::keywords() const
{
    return namesForOids(m_keywordOids, s_keywordEntity);
}

void ZTItem::setKeywords(const QStringList &names)
{
    setKeywordOids(oidArrayForIncomingArray(names, s_keywordEntity));
}

void ZTItem::setKeywordOids(const QStringList &oids)
{
    storeOidArray(m_keywordOids, oids, s_toKeywordData);
}

QStringList ZTItem::oidArrayForIncomingArray(const QStringList &names, const QString &entityName)
{
    QStringList oids;
    ZTManagedObjectContext *context = managedObjectContext();
    if (!context)
        return oids;
    auto &table = context->mutableOidTable(entityName);
    auto &index = context->nameIndex(entityName);
    for (const QString &name : names) {
        if (name.trimmed().isEmpty())
            continue;
        ZTManagedObject *row = index.value(name, nullptr);
        if (!row || row->isDeleted() || !table.contains(row->oid())) {
            row = context->insertNewObject(entityName);
            if (!row)
                continue;
            static_cast<ZTSharedName *>(row)->setName(name);
            table.insert(row->oid(), row);
            index.insert(name, row);
        }
        oids << row->oid();
    }
    return oids;
}

QString ZTItem::rowName(const ZTManagedObject &row)
{
    static thread_local ZTSlotMemo memo;
    return row.primitiveValueForKey(s_name, memo).toString();
}

QStringList ZTItem::namesForOids(const QStringList &oids, const QString &entityName) const
{
    QStringList names;
    ZTManagedObjectContext *context = managedObjectContext();
    if (!context)
        return names;
    if (oids.isEmpty())
        return names;
    const auto &tables = context->oidObjectDictionary();
    const auto table = tables.constFind(entityName);
    if (table == tables.constEnd())
        return names;
    // Read for every item by the view's passes: no list in between, the name's slot found once.
    static thread_local ZTSlotMemo memo;
    names.reserve(oids.size());
    for (const QString &oid : oids)
        if (const ZTManagedObject *row = table->value(oid, nullptr))
            names << row->primitiveValueForKey(s_name, memo).toString();
    return names;
}

QStringList ZTItem::oidArrayForRoleDicts(const QVariantList &dicts, const QString &roleEntity,
                                         const QString &personEntity, const QString &personKey,
                                         const QString &inverseKey, MissingRole missing)
{
    Q_UNUSED(inverseKey)
    QList<IncomingRole> entries;
    entries.reserve(dicts.size());
    for (const QVariant &entry : dicts) {
        const QVariantMap map = entry.toMap();
        entries.append({map.value(s_name).toString(), map.value(s_role)});
    }
    return oidArrayForRoles(entries, roleEntity, personEntity, personKey, missing);
}

QList<ZTItem::IncomingRole> ZTItem::rolesForNames(const QStringList &names)
{
    QList<IncomingRole> entries;
    entries.reserve(names.size());
    for (const QString &name : names)
        entries.append({name, QVariant()});
    return entries;
}

QStringList ZTItem::oidArrayForRoles(const QList<IncomingRole> &entries, const QString &roleEntity,
                                     const QString &personEntity, const QString &personKey,
                                     MissingRole missing)
{
    QStringList oids;
    ZTManagedObjectContext *context = managedObjectContext();
    if (!context)
        return oids;
    auto &roleTable = context->mutableOidTable(roleEntity);
    auto &personTable = context->mutableOidTable(personEntity);
    auto &roleIndex = context->nameIndex(roleEntity);
    auto &personIndex = context->nameIndex(personEntity);
    static const QString unset = QStringLiteral("\x01unset");
    static const QString nil = QStringLiteral("nil");
    for (const auto &[name, incomingRole] : entries) {
        if (name.trimmed().isEmpty())
            continue;
        QVariant role = incomingRole;
        QString lookupRole;
        switch (missing) {
        case MissingRole::Empty:
            if (role.isNull() || !role.isValid())
                role = QString();
            lookupRole = role.toString();
            break;
        case MissingRole::LiteralNil:
            // A missing or blank role looks for the text "nil", which matches
            // nothing, so a new row is made with the role as it came in.
            lookupRole = role.toString().trimmed().isEmpty() ? nil : role.toString();
            break;
        case MissingRole::Unset:
            lookupRole = role.isValid() && !role.isNull() ? role.toString() : unset;
            break;
        }
        const QString key = ZTManagedObjectContext::roleIndexKey(name, lookupRole);
        ZTManagedObject *row = roleIndex.value(key, nullptr);
        if (!row || row->isDeleted() || !roleTable.contains(row->oid())) {
            row = context->insertNewObject(roleEntity);
            if (!row)
                continue;
            if (role.isValid() && !role.isNull())
                static_cast<ZTSharedRole *>(row)->setRole(role.toString());
            roleTable.insert(row->oid(), row);
            ZTManagedObject *person = personIndex.value(name, nullptr);
            if (!person || person->isDeleted() || !personTable.contains(person->oid())) {
                person = context->insertNewObject(personEntity);
                if (person) {
                    static_cast<ZTSharedName *>(person)->setName(name);
                    personTable.insert(person->oid(), person);
                    personIndex.insert(name, person);
                }
            }
            row->setToOneForKey(personKey, person);
            // Index the new row under the key that a later identical entry looks up.
            const QVariant stored = static_cast<ZTSharedRole *>(row)->roleValue();
            roleIndex.insert(
                ZTManagedObjectContext::roleIndexKey(name, stored.isValid() ? stored.toString() : unset),
                row);
        }
        oids << row->oid();
    }
    return oids;
}

// ---- lending ----

ZTLendingContext *ZTItem::lendingContext() const
{
    static thread_local ZTSlotMemo memo;
    return static_cast<ZTLendingContext *>(toOneForKey(s_toLendingContext, memo));
}

QString ZTItem::lentToName() const
{
    return lendingContext() ? lendingContext()->name() : QString();
}
QString ZTItem::lentToEmail() const
{
    return lendingContext() ? lendingContext()->email() : QString();
}
QDateTime ZTItem::dateLent() const
{
    return lendingContext() ? lendingContext()->dateLent() : QDateTime();
}
QDateTime ZTItem::dateDue() const
{
    return lendingContext() ? lendingContext()->dateDue() : QDateTime();
}

static ZTLendingContext *ensureLending(ZTItem *item)
{
    if (ZTLendingContext *lending = item->lendingContext())
        return lending;
    ZTManagedObjectContext *context = item->managedObjectContext();
    if (!context)
        return nullptr;
    auto *lending =
        static_cast<ZTLendingContext *>(context->insertNewObject(QStringLiteral("ZTLendingContext")));
    item->setToOneForKey(QStringLiteral("toLendingContext"), lending);
    return lending;
}

void ZTItem::setLentToName(const QString &name)
{
    if (name.isEmpty() && !lendingContext())
        return;
    if (ZTLendingContext *lending = ensureLending(this)) {
        lending->setPrimitiveValueForKey(name, QStringLiteral("name"));
        lending->updateName();
    }
}

QString ZTItem::lentToNameLastNameFirst() const
{
    return lendingContext() ? lendingContext()->nameLastNameFirst() : QString();
}

void ZTItem::setLentOutFlag(const QVariant &flag)
{
    if (flag.isValid() && !flag.isNull() && flag.toBool())
        ensureLending(this);
    else
        removeLending();
}

void ZTItem::setLentToEmail(const QString &email)
{
    if (email.isEmpty() && !lendingContext())
        return;
    if (ZTLendingContext *lending = ensureLending(this))
        lending->setPrimitiveValueForKey(email, QStringLiteral("email"));
}

void ZTItem::setDateLent(const QDateTime &date)
{
    if (!date.isValid() && !lendingContext())
        return;
    if (ZTLendingContext *lending = ensureLending(this))
        lending->setPrimitiveValueForKey(date.isValid() ? QVariant(date) : QVariant(),
                                         QStringLiteral("dateLent"));
}

void ZTItem::setDateDue(const QDateTime &date)
{
    if (date.isValid() || lendingContext()) {
        if (ZTLendingContext *lending = ensureLending(this))
            lending->setPrimitiveValueForKey(date.isValid() ? QVariant(date) : QVariant(),
                                             QStringLiteral("dateDue"));
    }
    updateOverdueStatus();
}

void ZTItem::removeLending()
{
    ZTLendingContext *lending = lendingContext();
    if (!lending)
        return;
    setToOneForKey(s_toLendingContext, nullptr);
    if (managedObjectContext())
        managedObjectContext()->deleteObject(lending);
    updateOverdueStatus();
}

// ---- search and links ----

bool ZTItem::containsString(const QString &text) const
{
    if (text.isNull())
        return false;
    static const QStringList keys{QStringLiteral("title"),
                                  QStringLiteral("genre"),
                                  QStringLiteral("source"),
                                  QStringLiteral("format"),
                                  QStringLiteral("notes"),
                                  QStringLiteral("condition"),
                                  QStringLiteral("productDescription"),
                                  QStringLiteral("location"),
                                  QStringLiteral("series")};
    for (const QString &key : keys)
        if (primitiveValueForKey(key).toString().contains(text, Qt::CaseInsensitive))
            return true;
    if (keywords().join(QLatin1Char(' ')).contains(text, Qt::CaseInsensitive))
        return true;
    return kindContainsString(text);
}

QStringList ZTItem::indexKeysSingle() const
{
    return {QStringLiteral("title"),
            QStringLiteral("genre"),
            QStringLiteral("source"),
            QStringLiteral("format"),
            QStringLiteral("notes"),
            QStringLiteral("condition"),
            QStringLiteral("productDescription"),
            QStringLiteral("location"),
            QStringLiteral("series")};
}

QStringList ZTItem::indexKeysMultiple() const
{
    return {ZTItemKey::keywords};
}

QString ZTItem::indexedString() const
{
    QStringList parts;
    for (const QString &key : indexKeysSingle()) {
        const QString v = valueForKey(key).toString();
        if (!v.isEmpty())
            parts << v;
    }
    for (const QString &key : indexKeysMultiple()) {
        const QStringList values = toStringList(valueForKey(key));
        if (!values.isEmpty())
            parts << values.join(QLatin1Char(' '));
    }
    return parts.join(QLatin1Char(' '));
}

QVariantList ZTItem::urlDictionariesWithAssociateTag(const QString &tag) const
{
    QVariantMap codes;
    for (const char *key : {"isbn", "asin", "gcdn", "cbdbn"}) {
        const QVariant v = valueForKey(QLatin1String(key));
        if (v.isValid())
            codes.insert(QLatin1String(key), v);
    }
    return ZTItemDerived::shopLinks(int(mediaKind()), codes, locale(), tag);
}

QString ZTItem::urlWithAssociateTag(const QString &tag) const
{
    const QVariantList links = urlDictionariesWithAssociateTag(tag);
    return links.isEmpty() ? QString() : links.first().toMap().value(QStringLiteral("url")).toString();
}

void ZTItem::setDate(const QString &key, const QVariant &value)
{
    setPrimitiveValueForKey(toDateTime(value), key);
}

ZTItem::AccessorTable ZTItem::commonAccessors()
{
    AccessorTable t;
    t.insert(ZTItemKey::locale, {[](const ZTItem &i) -> QVariant {
                                     const QString c = i.locale();
                                     return c.isNull() ? QVariant() : QVariant(c);
                                 },
                                 [](ZTItem &i, const QVariant &v) { i.setLocale(v.toString()); }});
    t.insert(ZTItemKey::priceLocale, {[](const ZTItem &i) -> QVariant {
                                          const QString c = i.priceLocale();
                                          return c.isNull() ? QVariant() : QVariant(c);
                                      },
                                      [](ZTItem &i, const QVariant &v) { i.setPriceLocale(v.toString()); }});
    t.insert(ZTItemKey::pricePaidLocale,
             {[](const ZTItem &i) -> QVariant {
                  const QString c = i.pricePaidLocale();
                  return c.isNull() ? QVariant() : QVariant(c);
              },
              [](ZTItem &i, const QVariant &v) { i.setPricePaidLocale(v.toString()); }});
    static const RowValues keywordRows{[](const ZTItem &i) -> const QStringList & { return i.m_keywordOids; },
                                       s_keywordEntity, &rowName};
    t.insert(ZTItemKey::keywords,
             {[](const ZTItem &i) -> QVariant { return i.keywords(); },
              [](ZTItem &i, const QVariant &v) { i.setKeywords(toStringList(v)); }, &keywordRows});
    t.insert(QStringLiteral("keywordOids"),
             {[](const ZTItem &i) -> QVariant { return i.keywordOids(); }, nullptr});
    t.insert(QStringLiteral("titleWithoutLeadingArticle"),
             {[](const ZTItem &i) -> QVariant { return i.titleWithoutLeadingArticle(); }, nullptr});
    t.insert(QStringLiteral("hasCoverImageFlag"),
             {[](const ZTItem &i) -> QVariant { return i.hasCoverImage(); }, nullptr});
    t.insert(QStringLiteral("overdueFlag"),
             {[](const ZTItem &i) -> QVariant { return i.isOverdue(); }, nullptr});
    t.insert(QStringLiteral("year"), {[](const ZTItem &i) { return i.year(); }, nullptr});
    t.insert(QStringLiteral("originalYear"), {[](const ZTItem &i) { return i.originalYear(); }, nullptr});
    t.insert(QStringLiteral("priceString"),
             {[](const ZTItem &i) -> QVariant { return i.priceString(); }, nullptr});
    t.insert(QStringLiteral("pricePaidString"),
             {[](const ZTItem &i) -> QVariant { return i.pricePaidString(); }, nullptr});
    t.insert(QStringLiteral("lentToName"),
             {[](const ZTItem &i) -> QVariant {
                  const QString s = i.lentToName();
                  return s.isNull() ? QVariant() : QVariant(s);
              },
              [](ZTItem &i, const QVariant &v) { i.setLentToName(v.toString()); }});
    t.insert(QStringLiteral("lentToEmail"),
             {[](const ZTItem &i) -> QVariant {
                  const QString s = i.lentToEmail();
                  return s.isNull() ? QVariant() : QVariant(s);
              },
              [](ZTItem &i, const QVariant &v) { i.setLentToEmail(v.toString()); }});
    t.insert(QStringLiteral("dateLent"),
             {[](const ZTItem &i) -> QVariant {
                  const QDateTime d = i.dateLent();
                  return d.isValid() ? QVariant(d) : QVariant();
              },
              [](ZTItem &i, const QVariant &v) { i.setDateLent(toDateTime(v)); }});
    t.insert(ZTItemKey::dateDue, {[](const ZTItem &i) -> QVariant {
                                      const QDateTime d = i.dateDue();
                                      return d.isValid() ? QVariant(d) : QVariant();
                                  },
                                  [](ZTItem &i, const QVariant &v) { i.setDateDue(toDateTime(v)); }});
    t.insert(QStringLiteral("lentOutFlag"), {[](const ZTItem &i) -> QVariant { return i.isLentOut(); },
                                             [](ZTItem &i, const QVariant &v) { i.setLentOutFlag(v); }});
    t.insert(QStringLiteral("lentToNameLastNameFirst"), {[](const ZTItem &i) -> QVariant {
                                                             const QString s = i.lentToNameLastNameFirst();
                                                             return s.isEmpty() ? QVariant() : QVariant(s);
                                                         },
                                                         nullptr});
    // The questions the browser, the caches and the cells ask by name.
    t.insert(QStringLiteral("isLentOut"),
             {[](const ZTItem &i) -> QVariant { return i.isLentOut(); }, nullptr});
    t.insert(QStringLiteral("isLocked"), {[](const ZTItem &i) -> QVariant { return i.isLocked(); }, nullptr});
    t.insert(QStringLiteral("isOverdue"),
             {[](const ZTItem &i) -> QVariant { return i.isOverdue(); }, nullptr});
    t.insert(QStringLiteral("isOwned"), {[](const ZTItem &i) -> QVariant { return i.isOwned(); }, nullptr});
    t.insert(QStringLiteral("isUsed"), {[](const ZTItem &i) -> QVariant { return i.isUsed(); }, nullptr});
    t.insert(QStringLiteral("isSigned"), {[](const ZTItem &i) -> QVariant { return i.isSigned(); }, nullptr});
    t.insert(QStringLiteral("firstKeyword"), {[](const ZTItem &i) -> QVariant {
                                                  const QStringList k = i.keywords();
                                                  return k.isEmpty() ? QVariant() : QVariant(k.first());
                                              },
                                              nullptr});
    // Picture data handed in through a dictionary, kept until the caller takes it.
    t.insert(QStringLiteral("imageSmall"),
             {&transientGet<&Transient::imageSmall>, &transientSet<&Transient::imageSmall>});
    t.insert(QStringLiteral("imageMedium"),
             {&transientGet<&Transient::imageMedium>, &transientSet<&Transient::imageMedium>});
    t.insert(QStringLiteral("imageLarge"),
             {&transientGet<&Transient::imageLarge>, &transientSet<&Transient::imageLarge>});
    t.insert(QStringLiteral("imageUser"),
             {&transientGet<&Transient::imageUser>, &transientSet<&Transient::imageUser>});
    t.insert(QStringLiteral("imageSmallUrl"),
             {&transientGet<&Transient::imageSmallUrl>, &transientSet<&Transient::imageSmallUrl>});
    t.insert(QStringLiteral("imageMediumUrl"),
             {&transientGet<&Transient::imageMediumUrl>, &transientSet<&Transient::imageMediumUrl>});
    t.insert(QStringLiteral("imageLargeUrl"),
             {&transientGet<&Transient::imageLargeUrl>, &transientSet<&Transient::imageLargeUrl>});
    return t;
}
