#include "model/ZTComic.h"

#include "model/ZTItemDerived.h"
#include "model/ZTSharedRows.h"

namespace {
const QString s_storyData = QStringLiteral("toStoryData");
const QString s_artistData = QStringLiteral("toArtistData");
const QString s_characterData = QStringLiteral("toCharacterData");
const QString s_storyEntity = QStringLiteral("ZTStory");
const QString s_name = QStringLiteral("name");
const QString s_role = QStringLiteral("role");
const char *const s_ownKeys[] = {"cbdbn",     "gcdn",        "isbn",  "upc",       "pages",
                                 "publisher", "issueNumber", "grade", "issueCount"};

} // namespace

QStringList ZTComic::itemCodeTypes() const
{
    return {QStringLiteral("cbdbn"), QStringLiteral("gcdn")};
}

QStringList ZTComic::grades()
{
    return {QStringLiteral("GM"), QStringLiteral("MT"),  QStringLiteral("NM/MT"), QStringLiteral("NM+"),
            QStringLiteral("NM"), QStringLiteral("NM-"), QStringLiteral("VF/NM"), QStringLiteral("VF+"),
            QStringLiteral("VF"), QStringLiteral("VF-"), QStringLiteral("FN/VF"), QStringLiteral("FN+"),
            QStringLiteral("FN"), QStringLiteral("FN-"), QStringLiteral("VG/FN"), QStringLiteral("VG+"),
            QStringLiteral("VG"), QStringLiteral("VG-"), QStringLiteral("GD/VG"), QStringLiteral("GD+"),
            QStringLiteral("GD"), QStringLiteral("GD-"), QStringLiteral("FR/GD"), QStringLiteral("FR"),
            QStringLiteral("PR")};
}

QStringList ZTComic::stories() const
{
    return namesForOids(m_storyOids, s_storyEntity);
}
void ZTComic::setStories(const QStringList &names)
{
    storeOidArray(m_storyOids, oidArrayForIncomingArray(names, s_storyEntity), s_storyData);
}

static QStringList roleOids(ZTComic &comic, const QVariantList &dicts, const ZTRoleEntity &roles,
                            ZTItem::MissingRole missing)
{
    return comic.oidArrayForRoleDicts(dicts, QLatin1String(roles.roleEntity),
                                      QLatin1String(roles.personEntity), QLatin1String(roles.personKey),
                                      QLatin1String(roles.inverseKey), missing);
}

static QStringList roleOidsForNames(ZTComic &comic, const QStringList &names, const ZTRoleEntity &roles)
{
    return comic.oidArrayForRoles(ZTItem::rolesForNames(names), QLatin1String(roles.roleEntity),
                                  QLatin1String(roles.personEntity), QLatin1String(roles.personKey),
                                  ZTItem::MissingRole::Unset);
}

QVariantList ZTComic::artistRoleDicts() const
{
    return roleDictsForOids(m_artistRoleOids, QLatin1String(ZTRoleEntities::artist.roleEntity),
                            QLatin1String(ZTRoleEntities::artist.personKey));
}

void ZTComic::setArtistRoleDicts(const QVariantList &dicts)
{
    storeOidArray(m_artistRoleOids, roleOids(*this, dicts, ZTRoleEntities::artist, MissingRole::LiteralNil),
                  s_artistData);
    updateArtists();
}

void ZTComic::setArtists(const QStringList &names)
{
    storeOidArray(m_artistRoleOids, roleOidsForNames(*this, names, ZTRoleEntities::artist), s_artistData);
    updateArtists();
}

QStringList ZTComic::artists() const
{
    return roleStringsForOids(m_artistRoleOids, QLatin1String(ZTRoleEntities::artist.roleEntity),
                              QLatin1String(ZTRoleEntities::artist.personKey), RoleField::Name);
}

QStringList ZTComic::artistOids() const
{
    return personOidsForRoleOids(m_artistRoleOids, QLatin1String(ZTRoleEntities::artist.roleEntity),
                                 QLatin1String(ZTRoleEntities::artist.personKey));
}

QVariantList ZTComic::characterRoleDicts() const
{
    return roleDictsForOids(m_characterRoleOids, QLatin1String(ZTRoleEntities::character.roleEntity),
                            QLatin1String(ZTRoleEntities::character.personKey));
}

void ZTComic::setCharacterRoleDicts(const QVariantList &dicts)
{
    storeOidArray(m_characterRoleOids,
                  roleOids(*this, dicts, ZTRoleEntities::character, MissingRole::LiteralNil),
                  s_characterData);
}

void ZTComic::setCharacters(const QStringList &names)
{
    storeOidArray(m_characterRoleOids, roleOidsForNames(*this, names, ZTRoleEntities::character),
                  s_characterData);
}

QStringList ZTComic::characters() const
{
    return roleStringsForOids(m_characterRoleOids, QLatin1String(ZTRoleEntities::character.roleEntity),
                              QLatin1String(ZTRoleEntities::character.personKey), RoleField::Name);
}

QStringList ZTComic::characterOids() const
{
    return personOidsForRoleOids(m_characterRoleOids, QLatin1String(ZTRoleEntities::character.roleEntity),
                                 QLatin1String(ZTRoleEntities::character.personKey));
}

QStringList ZTComic::characterRoles() const
{
    QStringList out;
    for (const QVariant &entry : characterRoleDicts()) {
        const QVariantMap map = entry.toMap();
        const QString name = map.value(s_name).toString().trimmed();
        const QString role = map.value(s_role).toString().trimmed();
        out << (role.isEmpty() ? name : name + QStringLiteral(" (") + role + QLatin1Char(')'));
    }
    return out;
}

void ZTComic::updateArtists()
{
    m_artistsByLastNameFirstName.clear();
    for (const QString &n : artists())
        m_artistsByLastNameFirstName << ZTItemDerived::lastNameFirst(n.trimmed());
}

void ZTComic::updateIssueNumberCountString()
{
    m_issueNumberCountString =
        ZTItemDerived::issueNumberCountString(primitiveValueForKey(QStringLiteral("issueNumber")),
                                              primitiveValueForKey(QStringLiteral("issueCount")));
}

void ZTComic::updateAttributes()
{
    ZTItem::updateAttributes();
    updateArtists();
    updateIssueNumberCountString();
}

void ZTComic::decodeBlobs()
{
    m_storyOids = decodeOidBlob(s_storyData, s_storyEntity);
    m_artistRoleOids = decodeOidBlob(s_artistData, QLatin1String(ZTRoleEntities::artist.roleEntity));
    m_characterRoleOids = decodeOidBlob(s_characterData, QLatin1String(ZTRoleEntities::character.roleEntity));
}

QStringList ZTComic::indexKeysSingle() const
{
    return ZTItem::indexKeysSingle() + QStringList{QStringLiteral("gcdn"), QStringLiteral("publisher"),
                                                   QStringLiteral("isbn"), QStringLiteral("cbdbn"),
                                                   QStringLiteral("upc")};
}

QStringList ZTComic::indexKeysMultiple() const
{
    return ZTItem::indexKeysMultiple() +
           QStringList{QStringLiteral("characters"), QStringLiteral("artists"), QStringLiteral("stories")};
}

bool ZTComic::kindContainsString(const QString &text) const
{
    for (const char *key : {"gcdn", "cbdbn", "isbn", "upc", "publisher"})
        if (primitiveValueForKey(QLatin1String(key)).toString().contains(text, Qt::CaseInsensitive))
            return true;
    for (const QStringList &names : {stories(), artists(), characters()})
        if (names.join(QLatin1Char(' ')).contains(text, Qt::CaseInsensitive))
            return true;
    return false;
}

void ZTComic::addDictionaryValues(QVariantMap &map) const
{
    for (const char *key : s_ownKeys) {
        const QVariant v = primitiveValueForKey(QLatin1String(key));
        if (v.isValid())
            map.insert(QLatin1String(key), v);
    }
    map.insert(QStringLiteral("stories"), stories());
    map.insert(QStringLiteral("artistRoleDicts"), artistRoleDicts());
    map.insert(QStringLiteral("characterRoleDicts"), characterRoleDicts());
}

void ZTComic::handleKindDictionary(const QVariantMap &map)
{
    for (const char *key : s_ownKeys)
        setValueForKey(map.value(QLatin1String(key)), QLatin1String(key));
    setStories(variantToStrings(map.value(QStringLiteral("stories"))));
    setArtistRoleDicts(map.value(QStringLiteral("artistRoleDicts")).toList());
    setCharacterRoleDicts(map.value(QStringLiteral("characterRoleDicts")).toList());
    updateCharacters();
    updateIssueNumberCountString();
}

const ZTItem::AccessorTable &ZTComic::accessors() const
{
    static const AccessorTable table = [] {
        using C = ZTComic;
        AccessorTable t = commonAccessors();
        static const RowValues storyRows{
            [](const ZTItem &i) -> const QStringList & { return static_cast<const C &>(i).m_storyOids; },
            s_storyEntity, &rowName};
        // A character row stands for its person's name; a nameless one is left out.
        static const RowValues characterRows{[](const ZTItem &i) -> const QStringList & {
                                                 return static_cast<const C &>(i).m_characterRoleOids;
                                             },
                                             QLatin1String(ZTRoleEntities::character.roleEntity),
                                             [](const ZTManagedObject &row) {
                                                 static const QString personKey =
                                                     QLatin1String(ZTRoleEntities::character.personKey);
                                                 static thread_local ZTSlotMemo personMemo;
                                                 const ZTManagedObject *person =
                                                     row.toOneForKey(personKey, personMemo);
                                                 return person ? rowName(*person) : QString();
                                             },
                                             true};
        t.insert(QStringLiteral("stories"),
                 {&read<C, &C::stories>, &writeStrings<C, &C::setStories>, &storyRows});
        t.insert(QStringLiteral("artistRoleDicts"),
                 {&read<C, &C::artistRoleDicts>, &writeRoles<C, &C::setArtistRoleDicts>});
        t.insert(QStringLiteral("artistRoles"),
                 {&read<C, &C::artistRoleDicts>, &writeRoles<C, &C::setArtistRoleDicts>});
        t.insert(QStringLiteral("characterRoleDicts"),
                 {&read<C, &C::characterRoleDicts>, &writeRoles<C, &C::setCharacterRoleDicts>});
        t.insert(QStringLiteral("characterRoles"),
                 {&read<C, &C::characterRoles>, &writeRoles<C, &C::setCharacterRoleDicts>});
        t.insert(QStringLiteral("artists"), {&read<C, &C::artists>, &writeStrings<C, &C::setArtists>});
        t.insert(QStringLiteral("characters"),
                 {&read<C, &C::characters>, &writeStrings<C, &C::setCharacters>, &characterRows});
        t.insert(QStringLiteral("storyOids"), {&read<C, &C::storyOids>, nullptr});
        t.insert(QStringLiteral("artistRoleOids"), {&read<C, &C::artistRoleOids>, nullptr});
        t.insert(QStringLiteral("characterRoleOids"), {&read<C, &C::characterRoleOids>, nullptr});
        t.insert(QStringLiteral("artistOids"), {&read<C, &C::artistOids>, nullptr});
        t.insert(QStringLiteral("characterOids"), {&read<C, &C::characterOids>, nullptr});
        t.insert(QStringLiteral("artistsByLastNameFirstName"),
                 {&read<C, &C::artistsByLastNameFirstName>, nullptr});
        t.insert(QStringLiteral("issueNumberCountString"), {&read<C, &C::issueNumberCountString>, nullptr});
        t.insert(QStringLiteral("firstCharacter"), {&readFirst<C, &C::characters>, nullptr});
        t.insert(QStringLiteral("firstArtistByLastNameFirstname"),
                 {&readFirst<C, &C::artistsByLastNameFirstName>, nullptr});
        return t;
    }();
    return table;
}
