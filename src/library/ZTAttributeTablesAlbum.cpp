// What a music library adds to the common tables.
#include "library/ZTAttributeTables.h"

namespace {

ZTAttributeTablePart makeAlbum()
{
    ZTAttributeTablePart p;
    p.columnLabels = {
        {"artists", "Artists"},
        {"dateUsed", "Date Listened"},
        {"datePublished", "Date Released"},
        {"originalDatePublished", "Original Date Released"},
        {"upc", "UPC"},
        {"asin", "ASIN"},
        {"numberOfMedia", "Number of Media"},
        {"tracks", "Tracks"},
        {"label", "Label"},
        {"usedFlag", "Listened"},
    };
    p.exportColumns = {
        {"artists"}, {"dateUsed"}, {"datePublished"}, {"originalDatePublished"},
        {"upc"},     {"asin"},     {"numberOfMedia"}, {"tracks"},
        {"label"},   {"usedFlag"},
    };
    p.cells = {
        {"artists", "text", "artists", true, "\n"},
        {"tracks", "text", "tracks", true, "\n"},
    };
    p.sortKeys = {
        {"tracks", "firstTrack"},
        {"artists", "firstArtist"},
    };
    p.typeAhead = {
        {"tracks", "text", "tracks", true},
        {"artists", "text", "artists", true},
    };
    p.filters = {
        {"Artist", "text", "artists", "", true},
        {"Label", "text", "label"},
        {"Listened", "boolean", "isUsed"},
    };
    p.cacheable.string = {"label"};
    p.cacheable.array = {"artists"};
    p.importable = {
        {"Artists", "", "string", true},
        {"Date Listened", "", "date"},
        {"UPC"},
        {"ASIN"},
        {"Tracks", "", "string", true},
        {"Label"},
        {"Listened", "", "boolean"},
        {"Number of Media", "", "integer"},
        {"Date Released", "", "date"},
        {"Original Date Released", "", "date"},
    };
    p.exportable = {
        {"", "artists", "string", true},
        {"", "dateUsed", "date"},
        {"", "upc"},
        {"", "asin"},
        {"", "tracks", "string", true},
        {"", "label"},
        {"", "usedFlag", "boolean"},
        {"", "numberOfMedia", "integer"},
        {"", "datePublished", "date"},
        {"", "originalDatePublished", "date"},
    };
    p.templateTags = {
        {"artists", "artists", "", "text", true},
        {"tracks", "tracks", "", "text", true},
        {"dateused", "dateUsed", "", "date"},
        {"datepublished", "datePublished", "", "date"},
        {"originaldatepublished", "originalDatePublished", "", "date"},
        {"upc", "upc"},
        {"asin", "asin"},
        {"label", "label"},
        {"usedflag", "usedFlag", "", "boolean"},
        {"numberofmedia", "numberOfMedia", "", "integer"},
    };
    p.smartList = {
        {"UPC", "upc"},
        {"ASIN", "asin"},
        {"Label", "label"},
        {"Number of Media", "numberOfMedia", "integer"},
        {"Artist", "artists", "text", true},
        {"Track", "tracks", "text", true},
        {"Listened", "usedFlag", "boolean"},
        {"Date Listened", "dateUsed", "date"},
        {"Date Released", "datePublished", "date"},
        {"Original Date Released", "originalDatePublished", "date"},
    };
    p.duplicateKeys = {"upc", "asin"};
    p.itemCodeTypes = {"asin", "upc"};
    p.multipleEditable = {
        {"label", "object"},
        {"artists", "array"},
        {"tracks", "array"},
    };
    p.clearable = {"asin", "artists", "tracks", "label", "upc"};
    return p;
}

} // namespace

const ZTAttributeTablePart &ZTAttributeTableParts::album()
{
    static const ZTAttributeTablePart s_part = makeAlbum();
    return s_part;
}
