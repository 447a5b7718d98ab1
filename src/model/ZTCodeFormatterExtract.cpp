// Finding codes in free text, pasted URLs and scanner input.
#include "model/ZTCodeFormatter.h"

#include "base/ZTStringExtras.h"
#include "model/ZTCodeRules.h"
#include "model/ZTCodeSites.h"

namespace {

// The text from its first digit on; null when it holds none.
QString fromFirstDigit(const QString &text)
{
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (text.at(i).isDigit())
            return text.mid(i);
    }
    return QString();
}

// Tests the last `width` characters and drops one character from the end
// until a tail passes or the text is too short. Scanned codes often arrive
// with an add-on or stray characters behind them.
template <typename Accept> QString lastPassingTail(QString text, qsizetype width, Accept accept)
{
    while (text.size() >= width) {
        const QString tail = text.right(width);
        if (accept(tail))
            return tail;
        text.chop(1);
    }
    return QString();
}

// A comic database number, optionally written with the database's letter in
// front ("g12345" for the Grand Comics Database, "c12345" for ComicBookDB).
QString comicNumberFromString(const QString &text, QChar letter)
{
    if (!ZTText::containsNonWhitespace(text))
        return QString();
    QString rest = ZTText::stringByTrimmingWhitespace(text);
    if (rest.startsWith(letter))
        rest.remove(0, 1);
    qsizetype end = 0;
    while (end < rest.size() && rest.at(end).isDigit())
        ++end;
    return end > 0 ? rest.left(end) : QString();
}

bool hostIsIn(const QString &url, const QString &domain)
{
    const QString host = QUrl(url).host();
    return host == domain || host.endsWith(QLatin1Char('.') + domain);
}

} // namespace

QString ZTCodeFormatter::isbnFromString(const QString &text)
{
    if (text.size() < 10)
        return QString();
    if ((isbnValidationAllowsASINs() && isValidASIN(text)) || isValidISBN(text))
        return text;
    if (text.contains(QLatin1String("amazon")))
        return isbnFromAmazonURL(text);
    if (text.contains(ZTCodeSites::submarinoDomain()) ||
        text.contains(QLatin1String("javascript:openPopUp('/AllProdsBigImage.asp?")) ||
        text.contains(ZTCodeSites::submarinoImageHost() + QLatin1String("/images/books/cover")))
        return isbnFromSubmarinoURL(text);

    const QString digits = fromFirstDigit(ZTText::stringByStrippingDashesAndWhitespace(text));
    if (digits.isNull())
        return QString();
    // A Bookland EAN ("978" + the ISBN's nine digits) is the common case;
    // twelve characters are enough, its check digit is recomputed anyway.
    const QString ean = lastPassingTail(
        digits, 12, [](const QString &tail) { return isValidEAN(tail, QStringLiteral("978")); });
    if (!ean.isNull())
        return isbnFromEAN(ean);
    return lastPassingTail(digits, 10, [](const QString &tail) { return isValidISBNorASIN(tail); });
}

QString ZTCodeFormatter::eanFromString(const QString &text)
{
    if (text.size() < 13)
        return QString();
    return lastPassingTail(fromFirstDigit(text), 13,
                           [](const QString &tail) { return isValidEAN(tail, QString()); });
}

QString ZTCodeFormatter::upcFromString(const QString &text)
{
    if (text.size() < 12)
        return QString();
    return lastPassingTail(fromFirstDigit(text), 12, [](const QString &tail) { return isValidUPC(tail); });
}

QString ZTCodeFormatter::asinFromString(const QString &text)
{
    if (text.size() < 10 || !text.contains(QLatin1Char('B')))
        return QString();
    const qsizetype start = qMax<qsizetype>(0, text.indexOf(QLatin1Char('B')) - 1);
    for (qsizetype at = start; text.size() - at >= 10; ++at) {
        const QString window = text.mid(at, 10);
        if (isValidASIN(window))
            return window;
    }
    return QString();
}

QString ZTCodeFormatter::gcdnFromString(const QString &text)
{
    return comicNumberFromString(text, QLatin1Char('g'));
}

QString ZTCodeFormatter::cbdbnFromString(const QString &text)
{
    return comicNumberFromString(text, QLatin1Char('c'));
}

QString ZTCodeFormatter::isbnFromAmazonURL(const QString &url)
{
    if (url.isNull())
        return QString();
    // Product pages carry the ISBN or ASIN as a path component; cover image
    // URLs carry it in the file name ("0306406152.01.LZZZZZZZ.jpg").
    const QStringList components =
        QString(url).replace(QLatin1String("%2F"), QLatin1String("/")).split(QLatin1Char('/'));
    for (const QString &component : components) {
        if (isValidISBNorASIN(component))
            return component;
        if (component.endsWith(QLatin1String(".jpg"))) {
            for (const QString &piece : component.split(QLatin1Char('.'))) {
                if (isValidISBNorASIN(piece))
                    return piece;
            }
        }
    }
    return QString();
}

QString ZTCodeFormatter::codeFromURLCBDB(const QString &url)
{
    if (!hostIsIn(url, ZTCodeSites::comicBookDBDomain()))
        return QString();
    if (url.contains(QLatin1String("ID=")) && url.contains(QLatin1String("issue.php")))
        return ZTCodeRules::digitsAfter(url, QStringLiteral("ID="));
    // Cover pictures are named "<issue>_<something>.jpg".
    if (url.contains(QLatin1String("/graphics/comic_graphics/"))) {
        for (const QString &component : url.split(QLatin1Char('/'))) {
            const qsizetype underscore = component.indexOf(QLatin1Char('_'));
            if (underscore > 0 && ZTCodeRules::allDigits(QStringView(component).left(underscore)))
                return component.left(underscore);
        }
    }
    return QString();
}

QString ZTCodeFormatter::codeFromURLCBDBSeries(const QString &url)
{
    if (!hostIsIn(url, ZTCodeSites::comicBookDBDomain()) || !url.contains(QLatin1String("ID=")))
        return QString();
    if (!url.contains(QLatin1String("title.php")) && !url.contains(QLatin1String("title_covergallery.php")))
        return QString();
    return ZTCodeRules::digitsAfter(url, QStringLiteral("ID="));
}

QString ZTCodeFormatter::codeFromURLGCD(const QString &url)
{
    if (!hostIsIn(url, ZTCodeSites::grandComicsDatabaseDomain()))
        return QString();
    return ZTCodeRules::digitsAfter(url, QStringLiteral("/issue/"));
}

QString ZTCodeFormatter::codeFromURLGCDSeries(const QString &url)
{
    if (!hostIsIn(url, ZTCodeSites::grandComicsDatabaseDomain()))
        return QString();
    return ZTCodeRules::digitsAfter(url, QStringLiteral("/series/"));
}

QVariantMap ZTCodeFormatter::codeDictionaryForRawCode(ZTMediaKind kind, const QString &raw)
{
    switch (kind) {
    case ZTMediaKind::Book: {
        const QString isbn = isbnFromString(raw);
        if (!isbn.isNull())
            return {{QStringLiteral("isbn"), isbn}};
        if (isValidLCCN(raw))
            return {{QStringLiteral("lccn"), raw}};
        return {};
    }
    case ZTMediaKind::Album:
    case ZTMediaKind::Movie: {
        // Scanners append a two- or five-digit add-on after a blank.
        const qsizetype blank = raw.lastIndexOf(QLatin1Char(' '));
        const QString code = blank < 0 ? raw : ZTText::stringByTrimmingWhitespace(raw.left(blank));
        const QString upc = isValidUPC(code) ? code : upcFromString(code);
        if (!upc.isNull())
            return {{QStringLiteral("upc"), upc}};
        const QString asin = asinFromString(raw);
        if (!asin.isNull())
            return {{QStringLiteral("asin"), asin}};
        if (isValidEAN(raw, QString()))
            return {{QStringLiteral("upc"), raw}};
        return {};
    }
    case ZTMediaKind::Comic: {
        // A bare number is taken for the Grand Comics Database; a ComicBookDB
        // number needs its "c".
        const QString gcdn = gcdnFromString(raw);
        if (!gcdn.isNull())
            return {{QStringLiteral("gcdn"), gcdn}};
        const QString cbdbn = cbdbnFromString(raw);
        if (!cbdbn.isNull())
            return {{QStringLiteral("cbdbn"), cbdbn}};
        return {};
    }
    }
    return {};
}
