// What a movie library adds to the common tables.
#include "library/ZTAttributeTables.h"

namespace {

ZTAttributeTablePart makeMovie()
{
    ZTAttributeTablePart p;
    p.columnLabels = {
        {"upc", "UPC"},
        {"asin", "ASIN"},
        {"studio", "Studio"},
        {"directors", "Directors"},
        {"actors", "Actors"},
        {"roles", "Roles"},
        {"usedFlag", "Viewed"},
        {"dateUsed", "Date Viewed"},
        {"datePublished", "Date Released"},
        {"originalDatePublished", "Original Date Released"},
        {"audienceRating", "Audience Rating"},
        {"aspectRatio", "Aspect Ratio"},
        {"regionCode", "Region Code"},
        {"duration", "Duration"},
        {"numberOfMedia", "Number of Media"},
    };
    p.exportColumns = {
        {"upc"},
        {"asin"},
        {"studio"},
        {"directors"},
        {"actors"},
        {"roles"},
        {"usedFlag"},
        {"dateUsed"},
        {"datePublished"},
        {"originalDatePublished"},
        {"audienceRating"},
        {"aspectRatio"},
        {"regionCode"},
        {"duration"},
        {"numberOfMedia"},
    };
    p.cells = {
        {"directors", "text", "directors", true, "\n"},
        {"actors", "text", "actors", true, "\n"},
        {"roles", "text", "roles", true, "\n"},
    };
    p.sortKeys = {
        {"actors", "firstActorByLastNameFirstname"},
        {"directors", "firstDirectorByLastNameFirstname"},
        {"roles", "firstRoleByLastNameFirstname"},
    };
    p.typeAhead = {
        {"directors", "text", "firstDirectorByLastNameFirstname"},
        {"actors", "text", "firstActorByLastNameFirstname"},
        {"roles", "text", "firstRoleByLastNameFirstname"},
    };
    p.filters = {
        {"Director", "text", "directorsByLastNameFirstName", "", true},
        {"Actor", "text", "actorsByLastNameFirstName", "", true},
        {"Role", "text", "rolesByLastNameFirstName", "", true},
        {"Studio", "text", "studio"},
        {"Viewed", "boolean", "isUsed"},
        {"Audience Rating", "text", "audienceRating"},
        {"Aspect Ratio", "text", "aspectRatio"},
        {"Region Code", "text", "regionCode"},
    };
    p.cacheable.string = {"audienceRating", "studio", "regionCode", "aspectRatio"};
    p.cacheable.array = {"actorsByLastNameFirstName", "directorsByLastNameFirstName",
                         "rolesByLastNameFirstName"};
    p.importable = {
        {"UPC"},
        {"ASIN"},
        {"Directors", "", "string", true},
        {"Studio"},
        {"Viewed", "", "boolean"},
        {"Date Viewed", "", "date"},
        {"Audience Rating"},
        {"Aspect Ratio"},
        {"Region Code"},
        {"Duration", "", "integer"},
        {"Number of Media", "", "integer"},
        {"Date Released", "", "date"},
        {"Original Date Released", "", "date"},
    };
    // Actors and roles can be exported although a text file cannot bring them in.
    p.exportable = {
        {"", "upc"},
        {"", "asin"},
        {"", "directors", "string", true},
        {"", "studio"},
        {"", "usedFlag", "boolean"},
        {"", "dateUsed", "date"},
        {"", "audienceRating"},
        {"", "aspectRatio"},
        {"", "regionCode"},
        {"", "duration", "integer"},
        {"", "numberOfMedia", "integer"},
        {"", "datePublished", "date"},
        {"", "originalDatePublished", "date"},
        {"", "actors", "string", true},
        {"", "roles", "string", true},
    };
    p.templateTags = {
        {"upc", "upc"},
        {"asin", "asin"},
        {"studio", "studio"},
        {"directors", "directors", "", "text", true},
        {"actors", "actors", "", "text", true},
        {"roles", "roles", "", "text", true},
        {"usedflag", "usedFlag", "", "boolean"},
        {"dateused", "dateUsed", "", "date"},
        {"datepublished", "datePublished", "", "date"},
        {"originaldatepublished", "originalDatePublished", "", "date"},
        {"audiencerating", "audienceRating"},
        {"aspectratio", "aspectRatio"},
        // Keeps its capital on purpose: cells are looked up by the lower-cased
        // tag, so a "Region Code" column of an HTML export stays blank, as
        // pages made before expect.
        {"regionCode", "regionCode"},
        {"duration", "duration", "", "integer"},
        {"numberofmedia", "numberOfMedia", "", "integer"},
    };
    p.smartList = {
        {"UPC", "upc"},
        {"ASIN", "asin"},
        {"Studio", "studio"},
        {"Director", "directors", "text", true},
        {"Actor", "actors", "text", true},
        {"Role", "roles", "text", true},
        {"Viewed", "usedFlag", "boolean"},
        {"Date Viewed", "dateUsed", "date"},
        {"Date Released", "datePublished", "date"},
        {"Original Date Released", "originalDatePublished", "date"},
        {"Audience Rating", "audienceRating"},
        {"Aspect Ratio", "aspectRatio"},
        {"Region Code", "regionCode"},
        {"Duration", "duration", "integer"},
        {"Number of Media", "numberOfMedia", "integer"},
    };
    p.duplicateKeys = {"upc", "asin"};
    p.itemCodeTypes = {"asin", "upc"};
    p.multipleEditable = {
        {"studio", "object"},     {"audienceRating", "object"}, {"aspectRatio", "object"},
        {"regionCode", "object"}, {"directors", "array"},
    };
    p.clearable = {"actorRoles",     "directors", "studio",     "asin",
                   "audienceRating", "upc",       "regionCode", "aspectRatio"};
    return p;
}

} // namespace

const ZTAttributeTablePart &ZTAttributeTableParts::movie()
{
    static const ZTAttributeTablePart s_part = makeMovie();
    return s_part;
}
