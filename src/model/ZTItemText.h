#pragma once

#include <QMap>
#include <QString>
#include <QStringList>
#include <QVariant>
#include <QVariantList>

// Pure text rules behind an item's derived values: the title used for sorting,
// names in last-name-first form, the book author arrays, the comic issue text
// and the plain-name arrays read out of role maps. They take plain values so
// that the item, the importers and the tests can use them alike.
namespace ZTItemText {

// Articles per upper-case locale code, each with the blank (or apostrophe) that
// ends it, in the order in which they are tried.
const QMap<QString, QStringList> &leadingArticleDictionary();
// The locale codes with articles of their own besides English, in the order
// the bibliographic formatter walks them.
const QStringList &leadingArticleArray();

// The title used to sort and type ahead: blanks and punctuation trimmed from
// both ends, then one leading article removed. English articles always apply;
// the articles of the item's locale apply after them.
QString titleWithoutLeadingArticle(const QString &title, const QString &localeCode);

// "John Smith" -> "Smith, John": split at the last whitespace character of the
// trimmed name. Shorter names and names without whitespace stay as they are.
QString lastNameFirst(const QString &name);
QStringList lastNameFirstArray(const QStringList &names);

// Role text meaning "corporate author": the name is shown as it stands.
inline const QString CorporateAuthorRole = QStringLiteral("ent.");

struct AuthorArrays {
    QStringList authorsWithTypes;
    QStringList authorsWithTypesByLastNameFirstName;
};
// Builds the display and sort forms of a book's authors from its role maps
// (keys "name" and "role"); a role is shown localised in parentheses.
AuthorArrays authorArrays(const QVariantList &authorRoleDicts);
// The same from the names and roles themselves, in order.
struct NameAndRole {
    QString name;
    QString role;
};
AuthorArrays authorArrays(const QList<NameAndRole> &authors);

// The values at key ("name" or "role") of an array of maps, leaving out blanks
// and exact duplicates, in first-seen order.
QStringList stringsForArray(const QVariantList &array, const QString &key);

// "3 of 12", "3" or "- of 12"; a null string when neither value is set. A
// value counts as set when it holds a number.
QString issueNumberCountString(const QVariant &issueNumber, const QVariant &issueCount);

} // namespace ZTItemText
