#pragma once

#include "model/ZTMediaKind.h"

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QUrl>
#include <QVariantMap>

#include <functional>
#include <optional>

// The one place that knows what book, album, movie and comic codes look like:
// ISBN-10, EAN-13, UPC-A, Amazon's ASIN, the Library of Congress number and
// the two comic database numbers. It validates, repairs and converts code
// strings from the keyboard, scanners, pasted URLs, import files and pages.
//
// Predicates are false for a null string; extractors and converters answer a
// null string when there is no code. "Digit" means any Unicode decimal digit,
// counted at its value, so full-width or Arabic-Indic digits from an input
// method validate like ASCII ones and come back as they were typed.
class ZTCodeFormatter {
public:
    ZTCodeFormatter() = delete;

    // While on, an ASIN counts wherever an ISBN is wanted. Process-wide; the
    // library turns it on when it reads its settings.
    static void setIsbnValidationAllowsASINs(bool allow);
    static bool isbnValidationAllowsASINs();

    // --- Predicates ---
    static bool isValidISBN(const QString &code);
    static bool isValidISBNorASIN(const QString &code);
    static bool isValidASIN(const QString &code);
    // prefix (may be null) is compared against the text as it came in.
    static bool isValidEAN(const QString &code, const QString &prefix);
    static bool isValidUPC(const QString &code);
    static bool isValidLCCN(const QString &code);
    static bool isValidGCDN(const QString &code);
    static bool isValidCBDBN(const QString &code);

    // --- Extractors from free text ---
    static QString isbnFromString(const QString &text);
    static QString eanFromString(const QString &text);
    static QString upcFromString(const QString &text);
    static QString asinFromString(const QString &text);
    static QString gcdnFromString(const QString &text);
    static QString cbdbnFromString(const QString &text);

    // --- Converters ---
    static QString eanFromISBN(const QString &isbn);
    static QString isbnFromEAN(const QString &ean);
    static QString isbnFromFormattedISBN(const QString &isbn);
    static QString lccnFromFormattedLCCN(const QString &lccn);

    // --- From URLs ---
    static QString isbnFromAmazonURL(const QString &url);
    static QString isbnFromSubmarinoURL(const QString &url);
    static QString codeFromURLGCD(const QString &url);
    static QString codeFromURLGCDSeries(const QString &url);
    static QString codeFromURLCBDB(const QString &url);
    static QString codeFromURLCBDBSeries(const QString &url);

    // A one-key code dictionary ("isbn", "lccn", "upc", "asin", "gcdn" or
    // "cbdbn" to the code) for raw text in a library of the kind; empty when
    // the text holds no code.
    static QVariantMap codeDictionaryForRawCode(ZTMediaKind kind, const QString &raw);

    // The shop page behind a Submarino URL is read through this getter, which
    // the lookup layer sets to its transport and page cache. It answers the
    // page bytes, or a null QByteArray on failure, and may block up to 30
    // seconds. Unset, Submarino URLs yield no code.
    using PageGetter = std::function<QByteArray(const QUrl &)>;
    static void setPageGetter(PageGetter getter);
    // Forgets the Submarino pages already read (for tests).
    static void clearPageCache();

    // --- Citation key of a book ---
    // authors in last-name-first form; title without its leading article.
    static QString bibTexCode(const QStringList &authors, const QString &titleWithoutLeadingArticle,
                              std::optional<int> year);
    // The text reduced to what every BibTeX tool accepts in a key: ASCII
    // letters and digits, with accents dropped and letters such as "ß" or
    // "ø" spelled out; everything else goes.
    static QString bibTexFormattedString(const QString &text);
};
