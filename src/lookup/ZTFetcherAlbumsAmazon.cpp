#include "lookup/ZTFetcherAlbumsAmazon.h"

#include "base/ZTStringExtras.h"

using namespace ZTText;

namespace {
const QString TracksStep = QStringLiteral("tracks");

QString cutLastBracket(const QString &title)
{
    const ZTRange bracket =
        rangeBetweenString(title, QStringLiteral("["), QStringLiteral("]"), ZTSearchOption::Backwards);
    return bracket.isFound() ? stringByTrimmingWhitespace(title.left(bracket.location - 1)) : title;
}
} // namespace

QStringList ZTFetcherAlbumsAmazon::fetchableKeys() const
{
    return withImageKeys({
        "upc",
        "asin",
        "title",
        "artists",
        "label",
        "numberOfMedia",
        "tracks",
        "price",
        "datePublished",
        "datePublishedBitFlag",
        "format",
        "productDescription",
    });
}

QString ZTFetcherAlbumsAmazon::processTitleForAlbumsWithResultDictionary(const QVariantMap &result,
                                                                         QString *format)
{
    const QString title = result.value(QStringLiteral("title")).toString();
    const ZTRange paren =
        rangeBetweenString(title, QStringLiteral("("), QStringLiteral(")"), ZTSearchOption::Backwards);
    // A title that opens with parentheses keeps them: they are part of the name.
    if (paren.isFound() && paren.location - 1 >= 2) {
        if (format)
            *format = stringByTrimmingWhitespace(paren.of(title));
        return cutLastBracket(stringByTrimmingWhitespace(title.left(paren.location - 1)));
    }
    return cutLastBracket(title);
}

void ZTFetcherAlbumsAmazon::processMainPage(const QString &text, const QVariantMap &result)
{
    QString titleFormat;
    const QString title = processTitleForAlbumsWithResultDictionary(result, &titleFormat);
    if (containsNonWhitespace(title))
        setIfRequested(QStringLiteral("title"), title);
    const QString firstKey = result.value(QStringLiteral("_firstKey")).toString();
    const QString format = !firstKey.isEmpty() ? firstKey : titleFormat;
    if (!format.isEmpty())
        setIfRequested(QStringLiteral("format"), format);

    QString date = result.value(QStringLiteral("datePublished")).toString();
    if (date.isEmpty() && !firstKey.isEmpty()) {
        QString label = firstKey;
        if (label.endsWith(QLatin1Char(':')))
            label.chop(1);
        date = result.value(keyForDictionary(result, stringByTrimmingWhitespace(label))).toString();
    }
    if (!date.isEmpty())
        setDateIfRequested(QStringLiteral("datePublished"), date);

    for (const char *key : {"label", "language", "artists", "productDescription", "tracks"})
        setIfRequested(QLatin1String(key), result.value(QLatin1String(key)));
    takeNumberOfMedia(result);
    takePrice(result);
    const QString tracksURL = result.value(QStringLiteral("_tracksURL")).toString();
    if (!tracksURL.isEmpty()) {
        const QUrl url =
            QUrl(QStringLiteral("https://") + domain() + QStringLiteral("/")).resolved(QUrl(tracksURL));
        if (url.isValid())
            addStep(TracksStep, url);
    }
    processImagesFromMainSourceString(text);
}

void ZTFetcherAlbumsAmazon::processOtherStep(const QString &step, const QString &text)
{
    if (step != TracksStep || text.isNull())
        return;
    const QString area = rangeBetweenString(text, QStringLiteral("MusicTracksText"), QString()).of(text);
    const QString body =
        rangeBetweenString(area, QStringLiteral("<tbody"), QStringLiteral("</tbody>")).of(area);
    const QStringList tracks = cleanTracks(trackCells(body));
    if (!tracks.isEmpty())
        setIfRequested(QStringLiteral("tracks"), tracks);
}
