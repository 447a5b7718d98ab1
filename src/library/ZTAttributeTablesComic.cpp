// What a comic library adds to the common tables.
#include "library/ZTAttributeTables.h"

namespace {

ZTAttributeTablePart makeComic()
{
    ZTAttributeTablePart p;
    p.columnLabels = {
        {"upc", "UPC"},
        {"gcdn", "GCDN"},
        {"cbdbn", "CBDBN"},
        {"isbn", "ISBN"},
        {"publisher", "Publisher"},
        {"grade", "Grade"},
        {"artists", "Artists"},
        {"characters", "Characters"},
        {"stories", "Stories"},
        {"usedFlag", "Read"},
        {"dateUsed", "Date Read"},
        {"datePublished", "Date Published"},
        {"originalDatePublished", "Original Date Published"},
        {"pages", "Pages"},
        {"issueNumber", "Issue Number"},
        {"issueCount", "Issue Count"},
    };
    p.exportColumns = {
        {"upc"},
        {"gcdn"},
        {"cbdbn"},
        {"isbn"},
        {"publisher"},
        {"grade"},
        {"artists"},
        {"characters"},
        {"stories"},
        {"usedFlag"},
        {"dateUsed"},
        {"datePublished"},
        {"originalDatePublished"},
        {"pages"},
        {"issueNumber"},
        {"issueCount"},
    };
    p.cells = {
        {"artists", "text", "artists", true, "\n"},
        {"characters", "text", "characters", true, "\n"},
        {"stories", "text", "stories", true, "\n"},
    };
    p.sortKeys = {
        {"artists", "firstArtistByLastNameFirstname"},
        {"characters", "firstCharacter"},
    };
    // No type-ahead rows of its own: typing over an artist column finds nothing.
    p.filters = {
        {"Artist", "text", "artistsByLastNameFirstName", "", true},
        {"Character", "text", "characters", "", true},
        {"Story", "text", "stories", "", true},
        {"Publisher", "text", "publisher"},
        {"Grade", "text", "grade"},
        {"Read", "boolean", "isUsed"},
    };
    p.cacheable.string = {"grade", "publisher"};
    p.cacheable.array = {"characters", "artistsByLastNameFirstName", "stories"};
    // "Volume" has no comic attribute behind it; a column imported into it is
    // dropped like any unknown key, and files made for it still load.
    p.importable = {
        {"UPC"},
        {"ISBN"},
        {"GCDN"},
        {"CBDBN"},
        {"Artists", "", "string", true},
        {"Characters", "", "string", true},
        {"Stories", "", "string", true},
        {"Publisher"},
        {"Grade"},
        {"Read", "", "boolean"},
        {"Date Read", "", "date"},
        {"Pages", "", "integer"},
        {"Issue Number", "", "integer"},
        {"Issue Count", "", "integer"},
        {"Volume"},
        {"Date Published", "", "date"},
        {"Original Date Published", "", "date"},
    };
    p.exportable = {
        {"", "upc"},
        {"", "isbn"},
        {"", "gcdn"},
        {"", "cbdbn"},
        {"", "artists", "string", true},
        {"", "characters", "string", true},
        {"", "stories", "string", true},
        {"", "publisher"},
        {"", "grade"},
        {"", "usedFlag", "boolean"},
        {"", "dateUsed", "date"},
        {"", "pages", "integer"},
        {"", "issueNumber", "integer"},
        {"", "issueCount", "integer"},
        {"", "datePublished", "date"},
        {"", "originalDatePublished", "date"},
    };
    p.templateTags = {
        {"upc", "upc"},
        {"gcdn", "gcdn"},
        {"cbdbn", "cbdbn"},
        {"isbn", "isbn"},
        {"publisher", "publisher"},
        {"grade", "grade"},
        {"artists", "artists", "", "text", true},
        {"characters", "characters", "", "text", true},
        {"stories", "stories", "", "text", true},
        {"usedflag", "usedFlag", "", "boolean"},
        {"dateused", "dateUsed", "", "date"},
        {"datepublished", "datePublished", "", "date"},
        {"originaldatepublished", "originalDatePublished", "", "date"},
        {"pages", "pages", "", "integer"},
        {"issuenumber", "issueNumber", "", "integer"},
        {"issuecount", "issueCount", "", "integer"},
    };
    p.smartList = {
        {"UPC", "upc"},
        {"GCDN", "gcdn"},
        {"CBDBN", "cbdbn"},
        {"ISBN", "isbn"},
        {"Publisher", "publisher"},
        {"Grade", "grade"},
        {"Artist", "artists", "text", true},
        {"Character", "characters", "text", true},
        {"Story", "stories", "text", true},
        {"Read", "usedFlag", "boolean"},
        {"Date Read", "dateUsed", "date"},
        {"Date Published", "datePublished", "date"},
        {"Original Date Published", "originalDatePublished", "date"},
        {"Pages", "pages", "integer"},
        {"Issue Number", "issueNumber", "integer"},
        {"Issue Count", "issueCount", "integer"},
    };
    p.duplicateKeys = {"gcdn", "cbdbn", "upc", "isbn"};
    p.itemCodeTypes = {"cbdbn", "gcdn"};
    p.multipleEditable = {
        {"publisher", "object"}, {"grade", "object"},     {"issueCount", "object"},
        {"artists", "array"},    {"characters", "array"}, {"stories", "array"},
    };
    p.clearable = {"characters", "artists",   "gcdn",  "stories", "isbn",       "cbdbn",
                   "grade",      "publisher", "pages", "upc",     "issueCount", "issueNumber"};
    return p;
}

} // namespace

const ZTAttributeTablePart &ZTAttributeTableParts::comic()
{
    static const ZTAttributeTablePart s_part = makeComic();
    return s_part;
}
