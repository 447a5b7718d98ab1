#pragma once

#include "model/ZTItem.h"

class ZTMovie : public ZTItem {
public:
    ZTMediaKind mediaKind() const override { return ZTMediaKind::Movie; }
    QString xmlTagNameSingular() const override { return QStringLiteral("movie"); }
    QStringList itemCodeTypes() const override;

    QStringList directors() const;
    void setDirectors(const QStringList &names);
    const QStringList &directorOids() const { return m_directorOids; }
    QVariantList actorRoleDicts() const;
    void setActorRoleDicts(const QVariantList &dicts);
    const QStringList &actorRoleOids() const { return m_actorRoleOids; }
    QStringList actorOids() const;
    QStringList actors() const;
    QStringList roles() const;

    const QStringList &directorsByLastNameFirstName() const { return m_directorsByLastNameFirstName; }
    const QStringList &actorsByLastNameFirstName() const { return m_actorsByLastNameFirstName; }
    const QStringList &rolesByLastNameFirstName() const { return m_rolesByLastNameFirstName; }
    // "Actor (Role)" texts, in order.
    const QStringList &actorRoles() const { return m_actorRoles; }

    void updateDirectorArrays();
    void updateActorRoleArrays();
    void updateAttributes() override;

    QStringList indexKeysSingle() const override;
    QStringList indexKeysMultiple() const override;

protected:
    const AccessorTable &accessors() const override;
    void addDictionaryValues(QVariantMap &dictionary) const override;
    void handleKindDictionary(const QVariantMap &dictionary) override;
    bool kindContainsString(const QString &text) const override;
    void decodeBlobs() override;

private:
    QStringList m_directorOids;
    QStringList m_actorRoleOids;
    QStringList m_directorsByLastNameFirstName;
    QStringList m_actorsByLastNameFirstName;
    QStringList m_rolesByLastNameFirstName;
    QStringList m_actorRoles;
};
