#include "model/ZTBook.h"

#include "model/ZTItemDerived.h"
#include "model/ZTItemText.h"
#include "model/ZTSharedRows.h"
#include "store/ZTManagedObjectContext.h"

#include <QHash>

namespace {
const QString s_authorData = QStringLiteral("toAuthorData");
const QString s_subjectData = QStringLiteral("toSubjectData");
const QString s_subjectEntity = QStringLiteral("ZTSubject");
const QString s_name = QStringLiteral("name");
const QString s_role = QStringLiteral("role");
const ZTRoleEntity &s_roles = ZTRoleEntities::author;

QStringList toStrings(const QVariant &v)
{
    return ZTItem::variantToStrings(v);
}

} // namespace

QStringList ZTBook::itemCodeTypes() const
{
    return {QStringLiteral("isbn"), QStringLiteral("lccn")};
}

QVariantList ZTBook::authorRoleDicts() const
{
    return roleDictsForOids(m_authorRoleOids, QLatin1String(s_roles.roleEntity),
                            QLatin1String(s_roles.personKey));
}

void ZTBook::setAuthorRoleDicts(const QVariantList &dicts)
{
    storeOidArray(m_authorRoleOids,
                  oidArrayForRoleDicts(dicts, QLatin1String(s_roles.roleEntity),
                                       QLatin1String(s_roles.personEntity), QLatin1String(s_roles.personKey),
                                       QLatin1String(s_roles.inverseKey), MissingRole::Empty),
                  s_authorData);
    updateAuthors();
}

void ZTBook::setAuthors(const QStringList &names)
{
    storeOidArray(m_authorRoleOids,
                  oidArrayForRoles(rolesForNames(names), QLatin1String(s_roles.roleEntity),
                                   QLatin1String(s_roles.personEntity), QLatin1String(s_roles.personKey),
                                   MissingRole::Unset),
                  s_authorData);
    updateAuthors();
}

QStringList ZTBook::authors() const
{
    return roleStringsForOids(m_authorRoleOids, QLatin1String(s_roles.roleEntity),
                              QLatin1String(s_roles.personKey), RoleField::Name);
}

QStringList ZTBook::authorOids() const
{
    return personOidsForRoleOids(m_authorRoleOids, QLatin1String(s_roles.roleEntity),
                                 QLatin1String(s_roles.personKey));
}

QStringList ZTBook::locSubjects() const
{
    return namesForOids(m_subjectOids, s_subjectEntity);
}

void ZTBook::setLocSubjects(const QStringList &names)
{
    storeOidArray(m_subjectOids, oidArrayForIncomingArray(names, s_subjectEntity), s_subjectData);
}

QString ZTBook::deweyClassNumberPrefix() const
{
    return ZTItemDerived::deweyClassNumberPrefix(
        primitiveValueForKey(QStringLiteral("deweyClassNumber")).toString());
}

QString ZTBook::deweyClassNumberDisplayString() const
{
    static thread_local ZTSlotMemo memo;
    return ZTItemDerived::deweyClassNumberDisplayString(
        primitiveValueForKey(QStringLiteral("deweyClassNumber"), memo).toString());
}

void ZTBook::updateAuthors()
{
    m_authorArraysBuilt = false;
    m_authorsWithTypes.clear();
    m_authorsWithTypesByLastNameFirstName.clear();
}

namespace {
// Books share their author rows, and a row's forms depend only on its name and
// role: they are made once per row and thread, and made again only when the
// row's name or role is no longer what it was. A book with one author (most of
// them) shares the row's one-entry lists outright.
struct AuthorForms {
    QString name;
    QString role;
    QStringList plain;
    QStringList sorted;
};

const AuthorForms &authorForms(const ZTManagedObject &row)
{
    thread_local QHash<const ZTManagedObject *, AuthorForms> known;
    if (known.size() > 100000)
        known.clear();
    static thread_local ZTSlotMemo personMemo, nameMemo, roleMemo;
    static const QString personKey = QLatin1String(s_roles.personKey);
    // The stored text itself, read without copying it.
    auto text = [](const ZTManagedObject *from, const QString &key, ZTSlotMemo &memo) -> const QString * {
        static const QString none;
        const QVariant *value = from ? from->primitiveValuePointerForKey(key, memo) : nullptr;
        if (!value || value->typeId() != QMetaType::QString)
            return &none;
        return static_cast<const QString *>(value->constData());
    };
    const ZTManagedObject *person = row.toOneForKey(personKey, personMemo);
    const QString &name = *text(person, s_name, nameMemo);
    const QString &role = *text(&row, s_role, roleMemo);
    auto it = known.find(&row);
    if (it == known.end() || it->name != name || it->role != role) {
        const ZTItemText::AuthorArrays one =
            ZTItemText::authorArrays(QList<ZTItemText::NameAndRole>{{name, role}});
        it = known.insert(&row, {name, role, QStringList{one.authorsWithTypes.value(0)},
                                 QStringList{one.authorsWithTypesByLastNameFirstName.value(0)}});
    }
    return *it;
}
} // namespace

QString ZTBook::sortedAuthorForm(const ZTManagedObject &roleRow)
{
    return authorForms(roleRow).sorted.first();
}

void ZTBook::buildAuthorArrays() const
{
    if (m_authorArraysBuilt)
        return;
    m_authorsWithTypes.clear();
    m_authorsWithTypesByLastNameFirstName.clear();
    m_authorArraysBuilt = true;
    ZTManagedObjectContext *context = managedObjectContext();
    if (!context || m_authorRoleOids.isEmpty())
        return;
    static const QString roleEntity = QLatin1String(s_roles.roleEntity);
    const auto &tables = context->oidObjectDictionary();
    const auto roles = tables.constFind(roleEntity);
    if (roles == tables.constEnd())
        return;
    const bool single = m_authorRoleOids.size() == 1;
    if (!single) {
        m_authorsWithTypes.reserve(m_authorRoleOids.size());
        m_authorsWithTypesByLastNameFirstName.reserve(m_authorRoleOids.size());
    }
    for (const QString &oid : m_authorRoleOids) {
        const ZTManagedObject *row = roles->value(oid, nullptr);
        if (!row)
            continue;
        const AuthorForms &forms = authorForms(*row);
        if (single) {
            m_authorsWithTypes = forms.plain;
            m_authorsWithTypesByLastNameFirstName = forms.sorted;
        } else {
            m_authorsWithTypes.append(forms.plain.first());
            m_authorsWithTypesByLastNameFirstName.append(forms.sorted.first());
        }
    }
}

const QStringList &ZTBook::authorsWithTypes() const
{
    buildAuthorArrays();
    return m_authorsWithTypes;
}

const QStringList &ZTBook::authorsWithTypesByLastNameFirstName() const
{
    buildAuthorArrays();
    return m_authorsWithTypesByLastNameFirstName;
}

void ZTBook::updateVolumeNumber()
{
    m_volumeNumberSortable = ZTItemDerived::volumeNumberSortable(
        primitiveValueForKey(QStringLiteral("volumeNumber")).toString(), m_volumeNumberSortable);
}

void ZTBook::updateLocClassificationSortable()
{
    m_locClassificationSortable = ZTItemDerived::locClassificationSortable(
        primitiveValueForKey(QStringLiteral("locClassification")).toString());
}

void ZTBook::updateAttributes()
{
    ZTItem::updateAttributes();
    updateAuthors();
    updateVolumeNumber();
    updateLocClassificationSortable();
}

void ZTBook::decodeBlobs()
{
    m_authorRoleOids = decodeOidBlob(s_authorData, QLatin1String(s_roles.roleEntity));
    m_subjectOids = decodeOidBlob(s_subjectData, s_subjectEntity);
}

QStringList ZTBook::indexKeysSingle() const
{
    return ZTItem::indexKeysSingle() + QStringList{QStringLiteral("publisher"),
                                                   QStringLiteral("locClassification"),
                                                   QStringLiteral("isbn"), QStringLiteral("lccn")};
}

QStringList ZTBook::indexKeysMultiple() const
{
    return ZTItem::indexKeysMultiple() +
           QStringList{QStringLiteral("authors"), QStringLiteral("locSubjects")};
}

bool ZTBook::kindContainsString(const QString &text) const
{
    for (const char *key : {"publisher", "locClassification", "isbn", "lccn"})
        if (primitiveValueForKey(QLatin1String(key)).toString().contains(text, Qt::CaseInsensitive))
            return true;
    return authors().join(QLatin1Char(' ')).contains(text, Qt::CaseInsensitive) ||
           locSubjects().join(QLatin1Char(' ')).contains(text, Qt::CaseInsensitive);
}

void ZTBook::addDictionaryValues(QVariantMap &map) const
{
    for (const char *key : {"isbn", "lccn", "pages", "publisher", "locClassification", "deweyClassNumber",
                            "volumeNumber", "editionNumber", "placePublished"}) {
        const QVariant v = primitiveValueForKey(QLatin1String(key));
        if (v.isValid())
            map.insert(QLatin1String(key), v);
    }
    map.insert(QStringLiteral("locSubjects"), locSubjects());
    map.insert(QStringLiteral("authorRoleDicts"), authorRoleDicts());
}

void ZTBook::handleKindDictionary(const QVariantMap &map)
{
    for (const char *key : {"isbn", "lccn", "pages", "publisher", "locClassification", "deweyClassNumber",
                            "volumeNumber", "editionNumber", "placePublished"})
        setValueForKey(map.value(QLatin1String(key)), QLatin1String(key));
    updateLocClassificationSortable();
    updateVolumeNumber();
    setLocSubjects(toStrings(map.value(QStringLiteral("locSubjects"))));
    // Plain author names take role "" here, unlike setAuthors.
    if (map.contains(QStringLiteral("authors"))) {
        QVariantList dicts;
        for (const QString &n : toStrings(map.value(QStringLiteral("authors"))))
            dicts << QVariantMap{{s_name, n}, {s_role, QString()}};
        setAuthorRoleDicts(dicts);
    } else {
        setAuthorRoleDicts(map.value(QStringLiteral("authorRoleDicts")).toList());
    }
}

const ZTItem::AccessorTable &ZTBook::accessors() const
{
    static const AccessorTable table = [] {
        using B = ZTBook;
        AccessorTable t = commonAccessors();
        t.insert(QStringLiteral("authors"), {&read<B, &B::authors>, &writeStrings<B, &B::setAuthors>});
        t.insert(QStringLiteral("authorRoleDicts"),
                 {&read<B, &B::authorRoleDicts>, &writeRoles<B, &B::setAuthorRoleDicts>});
        t.insert(QStringLiteral("authorOids"), {&read<B, &B::authorOids>, nullptr});
        t.insert(QStringLiteral("authorRoleOids"), {&read<B, &B::authorRoleOids>, nullptr});
        static const RowValues subjectRows{
            [](const ZTItem &i) -> const QStringList & { return static_cast<const B &>(i).m_subjectOids; },
            s_subjectEntity, &rowName};
        t.insert(QStringLiteral("locSubjects"),
                 {&read<B, &B::locSubjects>, &writeStrings<B, &B::setLocSubjects>, &subjectRows});
        t.insert(QStringLiteral("subjectOids"), {&read<B, &B::subjectOids>, nullptr});
        t.insert(QStringLiteral("authorsWithTypes"), {&read<B, &B::authorsWithTypes>, nullptr});
        static const RowValues authorRows{
            [](const ZTItem &i) -> const QStringList & { return static_cast<const B &>(i).m_authorRoleOids; },
            QLatin1String(s_roles.roleEntity), &B::sortedAuthorForm};
        t.insert(QStringLiteral("authorsWithTypesByLastNameFirstName"),
                 {&read<B, &B::authorsWithTypesByLastNameFirstName>, nullptr, &authorRows});
        t.insert(QStringLiteral("volumeNumberSortable"), {&read<B, &B::volumeNumberSortable>, nullptr});
        t.insert(QStringLiteral("locClassificationSortable"),
                 {&read<B, &B::locClassificationSortable>, nullptr});
        t.insert(QStringLiteral("firstAuthor"), {&readFirst<B, &B::authors>, nullptr});
        t.insert(QStringLiteral("firstAuthorByLastNameFirstname"),
                 {[](const ZTItem &i) -> QVariant {
                      const QStringList a = static_cast<const B &>(i).authors();
                      return a.isEmpty() ? QVariant()
                                         : QVariant(ZTItemDerived::lastNameFirst(a.first().trimmed()));
                  },
                  nullptr});
        t.insert(QStringLiteral("firstLocSubject"), {&readFirst<B, &B::locSubjects>, nullptr});
        t.insert(QStringLiteral("deweyClassNumberPrefix"), {&read<B, &B::deweyClassNumberPrefix>, nullptr});
        t.insert(QStringLiteral("deweyClassNumberDisplayString"),
                 {&read<B, &B::deweyClassNumberDisplayString>, nullptr});
        return t;
    }();
    return table;
}
