#include "model/ZTAlbum.h"

namespace {
const QString s_artistData = QStringLiteral("toArtistData");
const QString s_trackData = QStringLiteral("toTrackData");
const QString s_artistEntity = QStringLiteral("ZTMusicalArtist");
const QString s_trackEntity = QStringLiteral("ZTTrack");
const char *const s_ownKeys[] = {"asin", "upc", "numberOfMedia", "label"};
} // namespace

QStringList ZTAlbum::itemCodeTypes() const
{
    return {QStringLiteral("asin"), QStringLiteral("upc")};
}

QStringList ZTAlbum::artists() const
{
    return namesForOids(m_artistOids, s_artistEntity);
}
void ZTAlbum::setArtists(const QStringList &names)
{
    storeOidArray(m_artistOids, oidArrayForIncomingArray(names, s_artistEntity), s_artistData);
}
QStringList ZTAlbum::tracks() const
{
    return namesForOids(m_trackOids, s_trackEntity);
}
void ZTAlbum::setTracks(const QStringList &names)
{
    storeOidArray(m_trackOids, oidArrayForIncomingArray(names, s_trackEntity), s_trackData);
}

void ZTAlbum::decodeBlobs()
{
    m_artistOids = decodeOidBlob(s_artistData, s_artistEntity);
    m_trackOids = decodeOidBlob(s_trackData, s_trackEntity);
}

QStringList ZTAlbum::indexKeysSingle() const
{
    return ZTItem::indexKeysSingle() +
           QStringList{QStringLiteral("upc"), QStringLiteral("label"), QStringLiteral("asin")};
}

QStringList ZTAlbum::indexKeysMultiple() const
{
    return ZTItem::indexKeysMultiple() + QStringList{QStringLiteral("tracks"), QStringLiteral("artists")};
}

bool ZTAlbum::kindContainsString(const QString &text) const
{
    for (const char *key : {"label", "upc", "asin"})
        if (primitiveValueForKey(QLatin1String(key)).toString().contains(text, Qt::CaseInsensitive))
            return true;
    return artists().join(QLatin1Char(' ')).contains(text, Qt::CaseInsensitive) ||
           tracks().join(QLatin1Char(' ')).contains(text, Qt::CaseInsensitive);
}

void ZTAlbum::addDictionaryValues(QVariantMap &map) const
{
    for (const char *key : s_ownKeys) {
        const QVariant v = primitiveValueForKey(QLatin1String(key));
        if (v.isValid())
            map.insert(QLatin1String(key), v);
    }
    map.insert(QStringLiteral("artists"), artists());
    map.insert(QStringLiteral("tracks"), tracks());
}

void ZTAlbum::handleKindDictionary(const QVariantMap &map)
{
    for (const char *key : s_ownKeys)
        setValueForKey(map.value(QLatin1String(key)), QLatin1String(key));
    setArtists(variantToStrings(map.value(QStringLiteral("artists"))));
    setTracks(variantToStrings(map.value(QStringLiteral("tracks"))));
}

const ZTItem::AccessorTable &ZTAlbum::accessors() const
{
    static const AccessorTable table = [] {
        using A = ZTAlbum;
        AccessorTable t = commonAccessors();
        static const RowValues artistRows{
            [](const ZTItem &i) -> const QStringList & { return static_cast<const A &>(i).m_artistOids; },
            s_artistEntity, &rowName};
        t.insert(QStringLiteral("artists"),
                 {&read<A, &A::artists>, &writeStrings<A, &A::setArtists>, &artistRows});
        t.insert(QStringLiteral("tracks"), {&read<A, &A::tracks>, &writeStrings<A, &A::setTracks>});
        t.insert(QStringLiteral("artistOids"), {&read<A, &A::artistOids>, nullptr});
        t.insert(QStringLiteral("trackOids"), {&read<A, &A::trackOids>, nullptr});
        t.insert(QStringLiteral("firstArtist"), {&readFirst<A, &A::artists>, nullptr});
        t.insert(QStringLiteral("firstTrack"), {&readFirst<A, &A::tracks>, nullptr});
        return t;
    }();
    return table;
}
