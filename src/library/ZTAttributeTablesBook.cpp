// What a book library adds to the common tables.
#include "library/ZTAttributeTables.h"

namespace {

ZTAttributeTablePart makeBook()
{
    ZTAttributeTablePart p;
    p.columnLabels = {
        {"authors", "Authors"},
        {"dateUsed", "Date Read"},
        {"datePublished", "Date Published"},
        {"originalDatePublished", "Original Date Published"},
        {"deweyClassNumber", "Dewey Class"},
        {"editionNumber", "Edition"},
        {"isbn", "ISBN"},
        {"lccn", "LCCN"},
        {"locClassification", "LOC Class"},
        {"locSubjects", "LOC Subjects"},
        {"pages", "Pages"},
        {"placePublished", "Place Published"},
        {"publisher", "Publisher"},
        {"usedFlag", "Read"},
        {"volumeNumber", "Volume"},
    };
    p.exportColumns = {
        {"isbn"},
        {"lccn"},
        {"pages"},
        {"publisher"},
        {"usedFlag"},
        {"dateUsed"},
        {"locSubjects"},
        {"locClassification", "LOC Classification"},
        {"authors"},
        {"deweyClassNumber"},
        {"volumeNumber"},
        {"editionNumber"},
        {"placePublished"},
        {"datePublished"},
        {"originalDatePublished"},
    };
    // Authors show with their roles, one per line.
    p.cells = {
        {"locSubjects", "text", "locSubjects", true, "\n"},
        {"authors", "text", "authorsWithTypes", true, "\n"},
    };
    p.sortKeys = {
        {"locSubjects", "firstLocSubject"},
        {"authors", "firstAuthorByLastNameFirstname"},
        {"volumeNumber", "volumeNumberSortable"},
        {"locClassification", "locClassificationSortable"},
    };
    p.typeAhead = {
        {"locSubjects", "text", "locSubjects", true},
        {"authors", "text", "firstAuthorByLastNameFirstname"},
    };
    p.filters = {
        {"Author", "text", "authorsWithTypesByLastNameFirstName", "", true},
        {"Dewey Class", "text", "deweyClassNumberDisplayString"},
        {"LOC Subject", "text", "locSubjects", "", true},
        {"Publisher", "text", "publisher"},
        {"Read", "boolean", "isUsed"},
        {"Place Published", "text", "placePublished"},
    };
    p.cacheable.string = {"publisher", "placePublished", "deweyClassNumberDisplayString"};
    p.cacheable.array = {"locSubjects", "authorsWithTypesByLastNameFirstName"};
    p.importable = {
        {"Authors", "", "string", true},
        {"Date Read", "", "date"},
        {"Dewey Class"},
        {"Edition"},
        {"ISBN"},
        {"LCCN"},
        {"LOC Classification"},
        {"LOC Subjects", "", "string", true},
        {"Pages", "", "integer"},
        {"Place Published"},
        {"Publisher"},
        {"Read", "", "boolean"},
        {"Volume"},
        {"Date Published", "", "date"},
        {"Original Date Published", "", "date"},
    };
    p.exportable = {
        {"", "authors", "string", true},
        {"", "dateUsed", "date"},
        {"", "deweyClassNumber"},
        {"", "editionNumber"},
        {"", "isbn"},
        {"", "lccn"},
        {"", "locClassification"},
        {"", "locSubjects", "string", true},
        {"", "pages", "integer"},
        {"", "placePublished"},
        {"", "publisher"},
        {"", "usedFlag", "boolean"},
        {"", "volumeNumber"},
        {"", "datePublished", "date"},
        {"", "originalDatePublished", "date"},
    };
    p.templateTags = {
        {"authors", "authors", "authorsWithTypes", "text", true},
        {"dateused", "dateUsed", "", "date"},
        {"datepublished", "datePublished", "", "date"},
        {"originaldatepublished", "originalDatePublished", "", "date"},
        {"deweyclassnumber", "deweyClassNumber"},
        {"editionnumber", "editionNumber"},
        {"isbn", "isbn"},
        {"lccn", "lccn"},
        {"locclassification", "locClassification"},
        {"locsubjects", "locSubjects", "", "text", true},
        {"pages", "pages", "", "integer"},
        {"placepublished", "placePublished"},
        {"publisher", "publisher"},
        {"usedflag", "usedFlag", "", "boolean"},
        {"volumenumber", "volumeNumber"},
    };
    p.smartList = {
        {"ISBN", "isbn"},
        {"LCCN", "lccn"},
        {"LOC Subject", "locSubjects", "text", true},
        {"LOC Classification", "locClassification"},
        {"Pages", "pages", "integer"},
        {"Publisher", "publisher"},
        {"Author", "authors", "text", true},
        {"Read", "usedFlag", "boolean"},
        {"Date Read", "dateUsed", "date"},
        {"Date Published", "datePublished", "date"},
        {"Original Date Published", "originalDatePublished", "date"},
        {"Dewey Class", "deweyClassNumber"},
        {"Volume", "volumeNumber"},
        {"Edition", "editionNumber"},
        {"Place Published", "placePublished"},
    };
    p.duplicateKeys = {"isbn", "lccn"};
    p.itemCodeTypes = {"isbn", "lccn"};
    p.multipleEditable = {
        {"placePublished", "object"},
        {"publisher", "object"},
        {"authors", "array"},
        {"locSubjects", "array"},
    };
    p.clearable = {"deweyClassNumber",  "authors",        "lccn",  "isbn",     "locSubjects",
                   "locClassification", "placePublished", "pages", "publisher"};
    return p;
}

} // namespace

const ZTAttributeTablePart &ZTAttributeTableParts::book()
{
    static const ZTAttributeTablePart s_part = makeBook();
    return s_part;
}
