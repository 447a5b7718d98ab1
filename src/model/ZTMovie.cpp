#include "model/ZTMovie.h"

#include "model/ZTItemDerived.h"
#include "model/ZTSharedRows.h"

namespace {
const QString s_directorData = QStringLiteral("toDirectorData");
const QString s_actorRoleData = QStringLiteral("toActorRoleData");
const QString s_directorEntity = QStringLiteral("ZTDirector");
const QString s_name = QStringLiteral("name");
const QString s_role = QStringLiteral("role");
const ZTRoleEntity &s_roles = ZTRoleEntities::actor;
const char *const s_ownKeys[] = {"asin",       "upc",         "audienceRating", "studio",
                                 "regionCode", "aspectRatio", "numberOfMedia",  "duration"};

QStringList lastNamesFirst(const QStringList &names)
{
    QStringList out;
    for (const QString &n : names)
        out << ZTItemDerived::lastNameFirst(n.trimmed());
    return out;
}
} // namespace

QStringList ZTMovie::itemCodeTypes() const
{
    return {QStringLiteral("asin"), QStringLiteral("upc")};
}

QStringList ZTMovie::directors() const
{
    return namesForOids(m_directorOids, s_directorEntity);
}
void ZTMovie::setDirectors(const QStringList &names)
{
    storeOidArray(m_directorOids, oidArrayForIncomingArray(names, s_directorEntity), s_directorData);
    updateDirectorArrays();
}

QVariantList ZTMovie::actorRoleDicts() const
{
    return roleDictsForOids(m_actorRoleOids, QLatin1String(s_roles.roleEntity),
                            QLatin1String(s_roles.personKey));
}

void ZTMovie::setActorRoleDicts(const QVariantList &dicts)
{
    storeOidArray(m_actorRoleOids,
                  oidArrayForRoleDicts(dicts, QLatin1String(s_roles.roleEntity),
                                       QLatin1String(s_roles.personEntity), QLatin1String(s_roles.personKey),
                                       QLatin1String(s_roles.inverseKey), MissingRole::LiteralNil),
                  s_actorRoleData);
    updateActorRoleArrays();
}

QStringList ZTMovie::actorOids() const
{
    return personOidsForRoleOids(m_actorRoleOids, QLatin1String(s_roles.roleEntity),
                                 QLatin1String(s_roles.personKey));
}
QStringList ZTMovie::actors() const
{
    return roleStringsForOids(m_actorRoleOids, QLatin1String(s_roles.roleEntity),
                              QLatin1String(s_roles.personKey), RoleField::Name);
}
QStringList ZTMovie::roles() const
{
    return roleStringsForOids(m_actorRoleOids, QLatin1String(s_roles.roleEntity),
                              QLatin1String(s_roles.personKey), RoleField::Role);
}

void ZTMovie::updateDirectorArrays()
{
    m_directorsByLastNameFirstName = lastNamesFirst(directors());
}

void ZTMovie::updateActorRoleArrays()
{
    const QVariantList dicts = actorRoleDicts();
    m_actorsByLastNameFirstName = lastNamesFirst(stringsForArray(dicts, s_name));
    // Roles are names too: "Han Solo" sorts as "Solo, Han".
    m_rolesByLastNameFirstName = lastNamesFirst(stringsForArray(dicts, s_role));
    m_actorRoles.clear();
    for (const QVariant &entry : dicts) {
        const QVariantMap map = entry.toMap();
        const QString name = map.value(s_name).toString().trimmed();
        const QString role = map.value(s_role).toString().trimmed();
        m_actorRoles << (role.isEmpty() ? name : name + QStringLiteral(" (") + role + QLatin1Char(')'));
    }
}

void ZTMovie::updateAttributes()
{
    ZTItem::updateAttributes();
    updateDirectorArrays();
    updateActorRoleArrays();
}

void ZTMovie::decodeBlobs()
{
    m_directorOids = decodeOidBlob(s_directorData, s_directorEntity);
    m_actorRoleOids = decodeOidBlob(s_actorRoleData, QLatin1String(s_roles.roleEntity));
}

QStringList ZTMovie::indexKeysSingle() const
{
    return ZTItem::indexKeysSingle() +
           QStringList{QStringLiteral("upc"), QStringLiteral("studio"), QStringLiteral("asin")};
}

QStringList ZTMovie::indexKeysMultiple() const
{
    return ZTItem::indexKeysMultiple() +
           QStringList{QStringLiteral("actors"), QStringLiteral("directors"), QStringLiteral("roles")};
}

bool ZTMovie::kindContainsString(const QString &text) const
{
    for (const char *key : {"studio", "upc", "asin"})
        if (primitiveValueForKey(QLatin1String(key)).toString().contains(text, Qt::CaseInsensitive))
            return true;
    for (const QStringList &names : {directors(), actors(), roles()})
        if (names.join(QLatin1Char(' ')).contains(text, Qt::CaseInsensitive))
            return true;
    return false;
}

void ZTMovie::addDictionaryValues(QVariantMap &map) const
{
    for (const char *key : s_ownKeys) {
        const QVariant v = primitiveValueForKey(QLatin1String(key));
        if (v.isValid())
            map.insert(QLatin1String(key), v);
    }
    map.insert(QStringLiteral("directors"), directors());
    map.insert(QStringLiteral("actorRoleDicts"), actorRoleDicts());
}

void ZTMovie::handleKindDictionary(const QVariantMap &map)
{
    for (const char *key : s_ownKeys)
        setValueForKey(map.value(QLatin1String(key)), QLatin1String(key));
    setDirectors(variantToStrings(map.value(QStringLiteral("directors"))));
    setActorRoleDicts(map.value(QStringLiteral("actorRoleDicts")).toList());
}

const ZTItem::AccessorTable &ZTMovie::accessors() const
{
    static const AccessorTable table = [] {
        using M = ZTMovie;
        AccessorTable t = commonAccessors();
        t.insert(QStringLiteral("directors"), {&read<M, &M::directors>, &writeStrings<M, &M::setDirectors>});
        t.insert(QStringLiteral("actorRoleDicts"),
                 {&read<M, &M::actorRoleDicts>, &writeRoles<M, &M::setActorRoleDicts>});
        // Lookups hand actors in as role maps under this key as well.
        t.insert(QStringLiteral("actorRoles"),
                 {&read<M, &M::actorRoles>, &writeRoles<M, &M::setActorRoleDicts>});
        t.insert(QStringLiteral("actors"), {&read<M, &M::actors>, [](ZTItem &i, const QVariant &v) {
                                                QVariantList dicts;
                                                for (const QString &n : variantToStrings(v))
                                                    dicts << QVariantMap{{s_name, n}};
                                                static_cast<M &>(i).setActorRoleDicts(dicts);
                                            }});
        t.insert(QStringLiteral("roles"), {&read<M, &M::roles>, nullptr});
        t.insert(QStringLiteral("directorOids"), {&read<M, &M::directorOids>, nullptr});
        t.insert(QStringLiteral("actorRoleOids"), {&read<M, &M::actorRoleOids>, nullptr});
        t.insert(QStringLiteral("actorOids"), {&read<M, &M::actorOids>, nullptr});
        t.insert(QStringLiteral("directorsByLastNameFirstName"),
                 {&read<M, &M::directorsByLastNameFirstName>, nullptr});
        t.insert(QStringLiteral("actorsByLastNameFirstName"),
                 {&read<M, &M::actorsByLastNameFirstName>, nullptr});
        t.insert(QStringLiteral("rolesByLastNameFirstName"),
                 {&read<M, &M::rolesByLastNameFirstName>, nullptr});
        t.insert(QStringLiteral("firstDirector"), {&readFirst<M, &M::directors>, nullptr});
        t.insert(QStringLiteral("firstDirectorByLastNameFirstname"),
                 {&readFirst<M, &M::directorsByLastNameFirstName>, nullptr});
        t.insert(QStringLiteral("firstActor"), {&readFirst<M, &M::actors>, nullptr});
        t.insert(QStringLiteral("firstActorByLastNameFirstname"),
                 {&readFirst<M, &M::actorsByLastNameFirstName>, nullptr});
        t.insert(QStringLiteral("firstRole"), {&readFirst<M, &M::roles>, nullptr});
        t.insert(QStringLiteral("firstRoleByLastNameFirstname"),
                 {&readFirst<M, &M::rolesByLastNameFirstName>, nullptr});
        return t;
    }();
    return table;
}
