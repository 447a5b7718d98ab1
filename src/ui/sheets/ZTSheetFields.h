#pragma once

#include "model/ZTMediaKind.h"

#include <QList>
#include <QString>
#include <QStringList>

// What the single-item sheet shows for each kind: its pages, and on each page
// the attributes in order with the control that edits them.
namespace ZTSheetFields {

enum class Type {
    Text,
    LongText,
    Integer,
    Date,      // a partial date with its bit
    Flag,      // a check box
    Names,     // a list of names
    RoleDicts, // names with roles
    Keywords,  // comma-separated words
    Locale,
    Price, // with its currency key
    Grade, // free text offering the comic grades
};

struct Field {
    QString key;
    Type type;
    QString label; // shown, already translated
    QString currencyKey = {};
    QStringList headers = {}; // for the name tables
};

struct Page {
    QString title;
    QList<Field> fields;
};

QList<Page> pagesForKind(ZTMediaKind kind);
// The label of any item key as the sheets show it, in the kind's wording
// ("Date Read" for a book's dateUsed, "Date Released" for an album's datePublished).
QString labelForKey(const QString &key, ZTMediaKind kind);
// The cache entry whose values complete a key's field, or empty.
QString cacheKeyForKey(const QString &key);

} // namespace ZTSheetFields
