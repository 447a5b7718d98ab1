#pragma once

#include "store/ZTManagedObject.h"

// Rows shared by every item of a library: one row per distinct name (keywords,
// people, tracks, stories …) and one per (person, role) pair. Items hold their
// oids; nothing in the store points from an item to them.
class ZTSharedName : public ZTManagedObject {
public:
    QString name() const;
    void setName(const QString &name);
    void awakeFromInsert() override;
};

class ZTSharedRole : public ZTManagedObject {
public:
    QString role() const;          // "" when unset
    QVariant roleValue() const;    // nothing when unset
    void setRole(const QVariant &role);
    // The person row (ZTAuthor for a ZTAuthorRole …).
    ZTManagedObject *person() const;
    QString personName() const;
    void awakeFromInsert() override;
};

// The entities of both kinds, with the key of the person relationship and its inverse.
struct ZTRoleEntity {
    const char *roleEntity;
    const char *personEntity;
    const char *personKey;  // e.g. "toAuthor"
    const char *inverseKey; // e.g. "toAuthorRoles"
};
namespace ZTRoleEntities {
inline constexpr ZTRoleEntity author{"ZTAuthorRole", "ZTAuthor", "toAuthor", "toAuthorRoles"};
inline constexpr ZTRoleEntity actor{"ZTActorRole", "ZTActor", "toActor", "toActorRoles"};
inline constexpr ZTRoleEntity artist{"ZTGraphicalArtistRole", "ZTGraphicalArtist", "toArtist", "toArtistRoles"};
inline constexpr ZTRoleEntity character{"ZTCharacterRole", "ZTCharacter", "toCharacter", "toCharacterRoles"};
} // namespace ZTRoleEntities
