#include "sharing/ZTSharingLayout.h"

#include <QRegularExpression>

namespace {
struct KindLayout {
    QString subtitleKey;
    QStringList keys;
    QStringList wide;
    QVariantMap multiple;
};

const KindLayout &layoutFor(ZTMediaKind kind)
{
    static const KindLayout s_layouts[] = {
        {QStringLiteral("authors"),
         {QStringLiteral("lccn"),
          QStringLiteral("isbn"),
          QStringLiteral("pages"),
          QStringLiteral("rating"),
          QStringLiteral("pricePaid"),
          QStringLiteral("price"),
          QStringLiteral("genre"),
          QStringLiteral("format"),
          QStringLiteral("publisher"),
          QStringLiteral("location"),
          QStringLiteral("datePublished"),
          QStringLiteral("placePublished"),
          QStringLiteral("editionNumber"),
          QStringLiteral("originalDatePublished"),
          QStringLiteral("series"),
          QStringLiteral("volumeNumber"),
          QStringLiteral("copies"),
          QStringLiteral("source"),
          QStringLiteral("signed"),
          QStringLiteral("owned"),
          QStringLiteral("dateRead"),
          QStringLiteral("read"),
          QStringLiteral("language"),
          QStringLiteral("dateObtained"),
          QStringLiteral("deweyClassNumber"),
          QStringLiteral("originalLanguage"),
          QStringLiteral("locale"),
          QStringLiteral("locClassification"),
          QStringLiteral("locSubjects"),
          QStringLiteral("keywords"),
          QStringLiteral("condition"),
          QStringLiteral("notes"),
          QStringLiteral("productDescription")},
         {QStringLiteral("authors"), QStringLiteral("keywords"), QStringLiteral("locSubjects"),
          QStringLiteral("notes"), QStringLiteral("condition"), QStringLiteral("productDescription")},
         {{QStringLiteral("authors"), QStringLiteral("author")},
          {QStringLiteral("keywords"), QStringLiteral("keyword")},
          {QStringLiteral("locSubjects"), QStringLiteral("locSubject")}}},
        {QStringLiteral("artists"),
         {QStringLiteral("asin"),
          QStringLiteral("upc"),
          QStringLiteral("price"),
          QStringLiteral("rating"),
          QStringLiteral("format"),
          QStringLiteral("pricePaid"),
          QStringLiteral("genre"),
          QStringLiteral("numberOfMedia"),
          QStringLiteral("label"),
          QStringLiteral("location"),
          QStringLiteral("originalDateReleased"),
          QStringLiteral("dateReleased"),
          QStringLiteral("source"),
          QStringLiteral("series"),
          QStringLiteral("owned"),
          QStringLiteral("copies"),
          QStringLiteral("listened"),
          QStringLiteral("signed"),
          QStringLiteral("dateObtained"),
          QStringLiteral("dateListened"),
          QStringLiteral("originalLanguage"),
          QStringLiteral("language"),
          QStringLiteral("keywords"),
          QStringLiteral("locale"),
          QStringLiteral("notes"),
          QStringLiteral("tracks"),
          QStringLiteral("productDescription"),
          QStringLiteral("condition")},
         {QStringLiteral("keywords"), QStringLiteral("artists"), QStringLiteral("notes"),
          QStringLiteral("tracks"), QStringLiteral("productDescription"), QStringLiteral("condition")},
         {{QStringLiteral("artists"), QStringLiteral("artist")},
          {QStringLiteral("keywords"), QStringLiteral("keyword")},
          {QStringLiteral("tracks"), QStringLiteral("track")}}},
        {QStringLiteral("studio"),
         {QStringLiteral("asin"),
          QStringLiteral("upc"),
          QStringLiteral("studio"),
          QStringLiteral("rating"),
          QStringLiteral("pricePaid"),
          QStringLiteral("price"),
          QStringLiteral("numberOfMedia"),
          QStringLiteral("format"),
          QStringLiteral("audienceRating"),
          QStringLiteral("aspectRatio"),
          QStringLiteral("genre"),
          QStringLiteral("duration"),
          QStringLiteral("dateReleased"),
          QStringLiteral("location"),
          QStringLiteral("series"),
          QStringLiteral("originalDateReleased"),
          QStringLiteral("copies"),
          QStringLiteral("source"),
          QStringLiteral("signed"),
          QStringLiteral("owned"),
          QStringLiteral("dateViewed"),
          QStringLiteral("viewed"),
          QStringLiteral("language"),
          QStringLiteral("dateObtained"),
          QStringLiteral("locale"),
          QStringLiteral("originalLanguage"),
          QStringLiteral("directors"),
          QStringLiteral("keywords"),
          QStringLiteral("notes"),
          QStringLiteral("actors"),
          QStringLiteral("productDescription"),
          QStringLiteral("condition")},
         {QStringLiteral("directors"), QStringLiteral("keywords"), QStringLiteral("notes"),
          QStringLiteral("actors"), QStringLiteral("productDescription"), QStringLiteral("condition")},
         {{QStringLiteral("keywords"), QStringLiteral("keyword")},
          {QStringLiteral("directors"), QStringLiteral("director")},
          {QStringLiteral("actors"), QStringLiteral("actor")}}},
        {QStringLiteral("publisher"),
         {QStringLiteral("isbn"),
          QStringLiteral("upc"),
          QStringLiteral("gcdn"),
          QStringLiteral("cbdbn"),
          QStringLiteral("rating"),
          QStringLiteral("grade"),
          QStringLiteral("issueNumberCountString"),
          QStringLiteral("publisher"),
          QStringLiteral("price"),
          QStringLiteral("pages"),
          QStringLiteral("format"),
          QStringLiteral("pricePaid"),
          QStringLiteral("location"),
          QStringLiteral("genre"),
          QStringLiteral("datePublished"),
          QStringLiteral("placePublished"),
          QStringLiteral("series"),
          QStringLiteral("originalDatePublished"),
          QStringLiteral("copies"),
          QStringLiteral("source"),
          QStringLiteral("signed"),
          QStringLiteral("owned"),
          QStringLiteral("dateRead"),
          QStringLiteral("read"),
          QStringLiteral("language"),
          QStringLiteral("dateObtained"),
          QStringLiteral("locale"),
          QStringLiteral("originalLanguage"),
          QStringLiteral("artists"),
          QStringLiteral("keywords"),
          QStringLiteral("stories"),
          QStringLiteral("characters"),
          QStringLiteral("condition"),
          QStringLiteral("notes"),
          QStringLiteral("productDescription")},
         {QStringLiteral("artists"), QStringLiteral("keywords"), QStringLiteral("stories"),
          QStringLiteral("characters"), QStringLiteral("condition"), QStringLiteral("notes"),
          QStringLiteral("productDescription")},
         {{QStringLiteral("keywords"), QStringLiteral("keyword")},
          {QStringLiteral("artists"), QStringLiteral("artist")},
          {QStringLiteral("characters"), QStringLiteral("character")},
          {QStringLiteral("stories"), QStringLiteral("story")}}},
    };
    return s_layouts[int(kind)];
}
} // namespace

QString ZTSharingLayout::formatiPhoneSubtitleKey(ZTMediaKind kind)
{
    return layoutFor(kind).subtitleKey;
}

QStringList ZTSharingLayout::formatiPhoneKeys(ZTMediaKind kind)
{
    return layoutFor(kind).keys;
}

QStringList ZTSharingLayout::formatiPhoneKeysWide(ZTMediaKind kind)
{
    return layoutFor(kind).wide;
}

QStringList ZTSharingLayout::formatiPhoneKeysLine(ZTMediaKind kind)
{
    QStringList line;
    const QStringList &wide = layoutFor(kind).wide;
    for (const QString &key : layoutFor(kind).keys)
        if (!wide.contains(key))
            line << key;
    return line;
}

QVariantMap ZTSharingLayout::formatiPhoneKeysMultiple(ZTMediaKind kind)
{
    return layoutFor(kind).multiple;
}

QVariantMap ZTSharingLayout::layoutDictionary(ZTMediaKind kind)
{
    // The companion calls the description "description".
    QStringList wide = formatiPhoneKeysWide(kind);
    wide.replaceInStrings(QRegularExpression(QStringLiteral("^productDescription$")),
                          QStringLiteral("description"));
    return {{QStringLiteral("lineAttributes"), formatiPhoneKeysLine(kind)},
            {QStringLiteral("wideAttributes"), wide},
            {QStringLiteral("multipleAttributes"), formatiPhoneKeysMultiple(kind)},
            {QStringLiteral("subtitleKey"), formatiPhoneSubtitleKey(kind)}};
}
