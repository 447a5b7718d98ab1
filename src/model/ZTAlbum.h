#pragma once

#include "model/ZTItem.h"

class ZTAlbum : public ZTItem {
public:
    ZTMediaKind mediaKind() const override { return ZTMediaKind::Album; }
    QString xmlTagNameSingular() const override { return QStringLiteral("album"); }
    QStringList itemCodeTypes() const override;

    QStringList artists() const;
    void setArtists(const QStringList &names);
    const QStringList &artistOids() const { return m_artistOids; }
    QStringList tracks() const;
    void setTracks(const QStringList &names);
    const QStringList &trackOids() const { return m_trackOids; }

    QStringList indexKeysSingle() const override;
    QStringList indexKeysMultiple() const override;

protected:
    const AccessorTable &accessors() const override;
    void addDictionaryValues(QVariantMap &dictionary) const override;
    void handleKindDictionary(const QVariantMap &dictionary) override;
    bool kindContainsString(const QString &text) const override;
    void decodeBlobs() override;

private:
    QStringList m_artistOids;
    QStringList m_trackOids;
};
