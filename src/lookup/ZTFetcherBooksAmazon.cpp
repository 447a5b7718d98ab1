#include "lookup/ZTFetcherBooksAmazon.h"

#include "base/ZTStringExtras.h"

using namespace ZTText;

QStringList ZTFetcherBooksAmazon::fetchableKeys() const
{
    return withImageKeys({"isbn", "title", "publisher", "authors", "price", "datePublished",
                          "datePublishedBitFlag", "format", "pages", "productDescription", "editionNumber",
                          "language", "series"});
}

QVariantMap ZTFetcherBooksAmazon::fetchKeyIdentifierDictionary() const
{
    return {{"isbn", "originalIsbn"}, {"lccn", "originalLccn"}};
}

void ZTFetcherBooksAmazon::startFetchingWithDictionary(const QVariantMap &dictionary)
{
    ZTFetcher::startFetchingWithDictionary(dictionary);
    const QString isbn = processedISBN();
    if (!isbn.isEmpty())
        addStep(QStringLiteral("main"), productURL(isbn));
    m_currentFetchKey = m_fetchKeys.value(0);
    fetchURLWithCurrentKey();
}

void ZTFetcherBooksAmazon::processMainPage(const QString &text, const QVariantMap &result)
{
    QString title = result.value(QStringLiteral("title")).toString();
    QString format;
    takeBracketedFormat(&title, &format);
    if (format.isEmpty())
        format = result.value(QStringLiteral("format")).toString();
    setIfRequested(QStringLiteral("title"), title.isEmpty() ? QVariant() : QVariant(title));
    setIfRequested(QStringLiteral("format"), format.isEmpty() ? QVariant() : QVariant(format));

    // The details list the page count under the format's own label.
    const QString pagesKey = keyForDictionary(result, format);
    const QString pagesText = pagesKey.isEmpty() ? QString() : result.value(pagesKey).toString().toLower();
    if (pagesText.contains(QLatin1String("page")) || pagesText.contains(QLatin1String("seiten")) ||
        pagesText.contains(QLatin1String("pagine")) || pagesText.contains(QLatin1String("páginas"))) {
        const QString digits = digitsOnly(pagesText).left(6);
        const int pages = digits.toInt();
        if (pages >= 1 && pages <= 99999)
            setIfRequested(QStringLiteral("pages"), pages);
    }

    // "Publisher; Edition (Date)"
    const QString publisherText = result.value(QStringLiteral("publisher")).toString();
    if (!publisherText.isEmpty()) {
        const ZTRange date = rangeBetweenString(publisherText, QStringLiteral("("), QStringLiteral(")"));
        const QString names = date.isFound() ? publisherText.left(date.location - 1) : publisherText;
        const QStringList parts = names.split(QLatin1Char(';'));
        const QString publisher = stringByTrimmingWhitespace(parts.value(0));
        const QString edition = stringByTrimmingWhitespace(parts.value(1));
        if (!publisher.isEmpty())
            setIfRequested(QStringLiteral("publisher"), publisher);
        if (!edition.isEmpty())
            setIfRequested(QStringLiteral("editionNumber"), edition);
        if (date.isFound())
            setDateIfRequested(QStringLiteral("datePublished"), date.of(publisherText));
    }

    setIfRequested(QStringLiteral("language"), result.value(QStringLiteral("language")));
    setIfRequested(QStringLiteral("series"), result.value(QStringLiteral("series")));
    takePrice(result);
    QStringList authors;
    for (const QString &name : result.value(QStringLiteral("subtitle")).toString().split(QLatin1Char(',')))
        if (containsNonWhitespace(name))
            authors << stringByTrimmingWhitespace(name);
    if (!authors.isEmpty())
        setIfRequested(QStringLiteral("authors"), authors);
    setIfRequested(QStringLiteral("productDescription"), result.value(QStringLiteral("productDescription")));
    processImagesFromMainSourceString(text);
}
