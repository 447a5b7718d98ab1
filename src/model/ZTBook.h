#pragma once

#include "model/ZTItem.h"

class ZTBook : public ZTItem {
public:
    ZTMediaKind mediaKind() const override { return ZTMediaKind::Book; }
    QString xmlTagNameSingular() const override { return QStringLiteral("book"); }
    QStringList itemCodeTypes() const override;

    QVariantList authorRoleDicts() const;
    void setAuthorRoleDicts(const QVariantList &dicts);
    void setAuthors(const QStringList &names);
    QStringList authors() const;
    QStringList authorOids() const;
    const QStringList &authorRoleOids() const { return m_authorRoleOids; }
    QStringList locSubjects() const;
    void setLocSubjects(const QStringList &names);
    const QStringList &subjectOids() const { return m_subjectOids; }

    // Built on first use after a change: most items are never shown by author.
    const QStringList &authorsWithTypes() const;
    const QStringList &authorsWithTypesByLastNameFirstName() const;
    QString volumeNumberSortable() const { return m_volumeNumberSortable; }
    QString locClassificationSortable() const { return m_locClassificationSortable; }
    QString deweyClassNumberPrefix() const;
    QString deweyClassNumberDisplayString() const;

    void updateAuthors();
    void updateVolumeNumber();
    void updateLocClassificationSortable();
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
    QStringList m_authorRoleOids;
    QStringList m_subjectOids;
    void buildAuthorArrays() const;
    // A role row's author in the "Last, First (Role)" form.
    static QString sortedAuthorForm(const ZTManagedObject &roleRow);
    mutable QStringList m_authorsWithTypes;
    mutable QStringList m_authorsWithTypesByLastNameFirstName;
    mutable bool m_authorArraysBuilt = false;
    QString m_volumeNumberSortable;
    QString m_locClassificationSortable;
};
