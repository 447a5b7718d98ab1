// The object model of a library store: every entity, its attributes with their
// defaults, and its relationships. Entity numbers are stored in every row and
// never change meaning.
#include "library/ZTLibraryModel.h"

#include "lists/ZTList.h"
#include "lists/ZTSmartList.h"
#include "model/ZTAlbum.h"
#include "model/ZTBook.h"
#include "model/ZTComic.h"
#include "model/ZTLendingContext.h"
#include "model/ZTLocale.h"
#include "model/ZTMovie.h"
#include "model/ZTSharedRows.h"
#include "store/ZTEntity.h"
#include "store/ZTImage.h"

#include <memory>

namespace {
using T = ZTAttributeType;

ZTAttribute attr(const char *name, T type, QVariant defaultValue = {})
{
    return ZTAttribute{QString::fromLatin1(name), type, defaultValue, {}, -1};
}

ZTRelationship one(const char *name, const char *destination, const char *inverse = "")
{
    return ZTRelationship{QString::fromLatin1(name),
                          QString::fromLatin1(destination),
                          false,
                          QString::fromLatin1(inverse),
                          {},
                          -1};
}

ZTRelationship many(const char *name, const char *destination, const char *inverse)
{
    return ZTRelationship{QString::fromLatin1(name),
                          QString::fromLatin1(destination),
                          true,
                          QString::fromLatin1(inverse),
                          {},
                          -1};
}

template <typename Row> std::function<ZTManagedObject *()> makes()
{
    return [] { return new Row; };
}

ZTObjectModel *build()
{
    auto *model = new ZTObjectModel;
    auto add = [model](const char *name, int number, const char *parent,
                       std::function<ZTManagedObject *()> factory, QVector<ZTAttribute> attributes,
                       QVector<ZTRelationship> toOne = {}, QVector<ZTRelationship> toMany = {},
                       bool isAbstract = false) {
        model->addEntity(QString::fromLatin1(name), number, QString::fromLatin1(parent), std::move(factory),
                         attributes, toOne, toMany, isAbstract);
    };
    auto named = [](std::initializer_list<ZTAttribute> extra = {}) {
        QVector<ZTAttribute> a{attr("oid", T::String), attr("name", T::String)};
        a += QVector<ZTAttribute>(extra);
        return a;
    };
    const QVector<ZTAttribute> roleAttributes{attr("oid", T::String), attr("role", T::String)};

    add("ZTLocale", 20, "", makes<ZTLocale>(), {attr("code", T::String)});
    add("ZTPriceLocale", 22, "", makes<ZTPriceLocale>(), {attr("code", T::String)});
    add("ZTImage", 10, "", makes<ZTImage>(),
        {attr("format", T::String), attr("filename", T::String), attr("width", T::Integer),
         attr("height", T::Integer), attr("size", T::Integer), attr("url", T::String),
         attr("userFlag", T::Boolean, false)});
    add("ZTLendingContext", 17, "", makes<ZTLendingContext>(),
        {attr("name", T::String), attr("email", T::String), attr("dateLent", T::Date),
         attr("dateDue", T::Date)});

    add("ZTKeyword", 16, "", makes<ZTSharedName>(), named());
    add("ZTSubject", 24, "", makes<ZTSharedName>(), named());
    add("ZTMusicalArtist", 21, "", makes<ZTSharedName>(), named());
    add("ZTTrack", 25, "", makes<ZTSharedName>(), named());
    add("ZTDirector", 7, "", makes<ZTSharedName>(), named());
    add("ZTStory", 23, "", makes<ZTSharedName>(), named());
    add("ZTAuthor", 3, "", makes<ZTSharedName>(), named(), {},
        {many("toAuthorRoles", "ZTAuthorRole", "toAuthor")});
    add("ZTAuthorRole", 4, "", makes<ZTSharedRole>(), roleAttributes,
        {one("toAuthor", "ZTAuthor", "toAuthorRoles")});
    add("ZTActor", 1, "", makes<ZTSharedName>(), named(), {},
        {many("toActorRoles", "ZTActorRole", "toActor")});
    add("ZTActorRole", 2, "", makes<ZTSharedRole>(), roleAttributes,
        {one("toActor", "ZTActor", "toActorRoles")});
    add("ZTGraphicalArtist", 8, "", makes<ZTSharedName>(), named(), {},
        {many("toArtistRoles", "ZTGraphicalArtistRole", "toArtist")});
    add("ZTGraphicalArtistRole", 9, "", makes<ZTSharedRole>(), roleAttributes,
        {one("toArtist", "ZTGraphicalArtist", "toArtistRoles")});
    add("ZTCharacter", 5, "", makes<ZTSharedName>(), named(), {},
        {many("toCharacterRoles", "ZTCharacterRole", "toCharacter")});
    add("ZTCharacterRole", 6, "", makes<ZTSharedRole>(), roleAttributes,
        {one("toCharacter", "ZTCharacter", "toCharacterRoles")});

    add("ZTItem", 11, "", nullptr,
        {attr("oid", T::String),
         attr("title", T::String),
         attr("genre", T::String),
         attr("source", T::String),
         attr("copies", T::Integer, qlonglong(1)),
         attr("price", T::Double),
         attr("pricePaid", T::Double),
         attr("format", T::String),
         attr("language", T::String),
         attr("originalLanguage", T::String),
         attr("series", T::String),
         attr("location", T::String),
         attr("notes", T::String),
         attr("condition", T::String),
         attr("productDescription", T::String),
         attr("rating", T::Integer, qlonglong(0)),
         attr("usedFlag", T::Boolean, false),
         attr("dateUsed", T::Date),
         attr("dateUsedBitFlag", T::Integer, qlonglong(0)),
         attr("datePublished", T::Date),
         attr("datePublishedBitFlag", T::Integer, qlonglong(0)),
         attr("originalDatePublished", T::Date),
         attr("originalDatePublishedBitFlag", T::Integer, qlonglong(0)),
         attr("dateObtained", T::Date),
         attr("dateObtainedBitFlag", T::Integer, qlonglong(0)),
         attr("dateAdded", T::Date),
         attr("dateModified", T::Date),
         attr("ownedFlag", T::Boolean, true),
         attr("lockedFlag", T::Boolean, false),
         attr("signedFlag", T::Boolean, false),
         attr("toKeywordData", T::Blob)},
        {one("toLocale", "ZTLocale"), one("toPriceLocale", "ZTPriceLocale"),
         one("toPricePaidLocale", "ZTPriceLocale"), one("toCoverImage", "ZTImage"),
         one("toLendingContext", "ZTLendingContext")},
        {}, true);
    add("ZTBook", 13, "ZTItem", makes<ZTBook>(),
        {attr("isbn", T::String), attr("lccn", T::String), attr("publisher", T::String),
         attr("locClassification", T::String), attr("deweyClassNumber", T::String),
         attr("volumeNumber", T::String), attr("editionNumber", T::String), attr("placePublished", T::String),
         attr("pages", T::Integer), attr("toAuthorData", T::Blob), attr("toSubjectData", T::Blob)});
    add("ZTAlbum", 12, "ZTItem", makes<ZTAlbum>(),
        {attr("asin", T::String), attr("upc", T::String), attr("label", T::String),
         attr("numberOfMedia", T::Integer, qlonglong(1)), attr("toArtistData", T::Blob),
         attr("toTrackData", T::Blob)});
    add("ZTMovie", 15, "ZTItem", makes<ZTMovie>(),
        {attr("asin", T::String), attr("upc", T::String), attr("studio", T::String),
         attr("audienceRating", T::String), attr("aspectRatio", T::String), attr("regionCode", T::String),
         attr("duration", T::Integer), attr("numberOfMedia", T::Integer, qlonglong(1)),
         attr("toDirectorData", T::Blob), attr("toActorRoleData", T::Blob)});
    add("ZTComic", 14, "ZTItem", makes<ZTComic>(),
        {attr("upc", T::String), attr("isbn", T::String), attr("gcdn", T::String), attr("cbdbn", T::String),
         attr("publisher", T::String), attr("grade", T::String), attr("pages", T::Integer),
         attr("issueNumber", T::Integer), attr("issueCount", T::Integer), attr("toStoryData", T::Blob),
         attr("toArtistData", T::Blob), attr("toCharacterData", T::Blob)});

    add("ZTList", 18, "", makes<ZTList>(),
        {attr("name", T::String), attr("order", T::Integer, qlonglong(0)),
         attr("libraryFlag", T::Boolean, false), attr("toItemData", T::Blob)});
    add("ZTSmartList", 19, "ZTList", makes<ZTSmartList>(),
        {attr("andOrFlag", T::Integer, qlonglong(0)), attr("qualifierData", T::Blob),
         attr("expirationDate", T::Date)});
    return model;
}
} // namespace

const ZTObjectModel &ZTLibraryModel::objectModel()
{
    static const std::unique_ptr<const ZTObjectModel> model(build());
    return *model;
}
