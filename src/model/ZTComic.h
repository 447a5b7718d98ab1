#pragma once

#include "model/ZTItem.h"

class ZTComic : public ZTItem {
public:
    ZTMediaKind mediaKind() const override { return ZTMediaKind::Comic; }
    QString xmlTagNameSingular() const override { return QStringLiteral("comic"); }
    QStringList itemCodeTypes() const override;
    static QStringList grades();

    QStringList stories() const;
    void setStories(const QStringList &names);
    const QStringList &storyOids() const { return m_storyOids; }
    QVariantList artistRoleDicts() const;
    void setArtistRoleDicts(const QVariantList &dicts);
    void setArtists(const QStringList &names);
    QStringList artists() const;
    const QStringList &artistRoleOids() const { return m_artistRoleOids; }
    QStringList artistOids() const;
    QVariantList characterRoleDicts() const;
    void setCharacterRoleDicts(const QVariantList &dicts);
    void setCharacters(const QStringList &names);
    QStringList characters() const;
    const QStringList &characterRoleOids() const { return m_characterRoleOids; }
    QStringList characterOids() const;

    const QStringList &artistsByLastNameFirstName() const { return m_artistsByLastNameFirstName; }
    QStringList characterRoles() const;
    QString issueNumberCountString() const { return m_issueNumberCountString; }

    void updateArtists();
    void updateCharacters() {}
    void updateIssueNumberCountString();
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
    QStringList m_storyOids;
    QStringList m_artistRoleOids;
    QStringList m_characterRoleOids;
    QStringList m_artistsByLastNameFirstName;
    QString m_issueNumberCountString;
};
