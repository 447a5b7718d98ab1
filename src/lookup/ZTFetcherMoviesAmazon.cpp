#include "lookup/ZTFetcherMoviesAmazon.h"

#include "base/ZTCalendarExtras.h"
#include "base/ZTStringExtras.h"

using namespace ZTText;

namespace {

const QString CastStep = QStringLiteral("actorRoles");
const QString CreditsStep = QStringLiteral("actorRoles2");
const QString ActorRolesKey = QStringLiteral("actorRoles");

QString between(const QString &text, const QString &first, const QString &second)
{
    return rangeBetweenString(text, first, second).of(text);
}

QString flat(const QString &text)
{
    return stringByTrimmingWhitespace(flattenHTML(text)).trimmed();
}

QUrl databaseURL(const QString &pathAndQuery)
{
    return QUrl(QStringLiteral("https://") + ZTAmazonTags::MovieDatabaseHost + pathAndQuery,
                QUrl::TolerantMode);
}

QVariantMap role(const QString &name, const QString &character)
{
    return {{QStringLiteral("name"), name}, {QStringLiteral("role"), character}};
}

} // namespace

QStringList ZTFetcherMoviesAmazon::fetchableKeys() const
{
    return withImageKeys({
        "upc",
        "asin",
        "title",
        "studio",
        "directors",
        "actorRoles",
        "audienceRating",
        "aspectRatio",
        "regionCode",
        "duration",
        "numberOfMedia",
        "price",
        "datePublished",
        "datePublishedBitFlag",
        "originalDatePublished",
        "originalDatePublishedBitFlag",
        "format",
        "productDescription",
    });
}

QString ZTFetcherMoviesAmazon::processFormatForMoviesWithString(const QString &text)
{
    const QString byline =
        rangeFromString(text, QStringLiteral("<div id=\"byline\""), QStringLiteral("</div>")).of(text);
    const QString format = between(byline, QStringLiteral("Format"), QStringLiteral("</div>"));
    QString value = between(format, QStringLiteral("<span>"), QStringLiteral("</span>"));
    value.replace(QLatin1String("&nbsp;"), QLatin1String(" "));
    return stringByTrimmingWhitespace(decodeHTML(value));
}

void ZTFetcherMoviesAmazon::processMainPage(const QString &text, const QVariantMap &result)
{
    QString title = result.value(QStringLiteral("title")).toString();
    QString bracketFormat;
    const QString code = locale();
    if (code == QLatin1String("US") || code == QLatin1String("CA")) {
        const ZTRange paren =
            rangeBetweenString(title, QStringLiteral("("), QStringLiteral(")"), ZTSearchOption::Backwards);
        const QString digits = digitsOnly(paren.of(title)).left(5);
        const int year = digits.toInt();
        if (paren.isFound() && year >= 1 && year <= 9999) {
            setIfRequested(QStringLiteral("originalDatePublished"), ZTCalendar::dateInMiddleOfYear(year));
            setIfRequested(QStringLiteral("originalDatePublishedBitFlag"), 2);
            title = stringByTrimmingWhitespace(title.left(paren.location - 1));
        }
        QString dropped;
        takeBracketedFormat(&title, &dropped);
    } else {
        // The British shop names the format in the title's last brackets.
        takeBracketedFormat(&title, &bracketFormat);
        if (code != QLatin1String("GB"))
            bracketFormat.clear();
    }
    if (containsNonWhitespace(title))
        setIfRequested(QStringLiteral("title"), title);

    QString format = processFormatForMoviesWithString(text);
    if (!bracketFormat.isEmpty())
        format = bracketFormat;
    if (format.isEmpty())
        format = result.value(QStringLiteral("format")).toString();
    if (!format.isEmpty())
        setIfRequested(QStringLiteral("format"), format);

    for (const char *key : {"studio", "aspectRatio", "language", "directors", "duration", "audienceRating",
                            "regionCode", "productDescription"})
        setIfRequested(QLatin1String(key), result.value(QLatin1String(key)));
    const QString date = result.value(QStringLiteral("datePublished")).toString();
    if (!date.isEmpty())
        setDateIfRequested(QStringLiteral("datePublished"), date);
    takeNumberOfMedia(result);
    takePrice(result);
    QVariantList roles;
    for (const QString &name : result.value(QStringLiteral("actors")).toStringList())
        roles << role(name, QString());
    if (!roles.isEmpty())
        setIfRequested(ActorRolesKey, roles);
    readCountryDetails(text, result);

    if (isRequested(ActorRolesKey)) {
        const QUrl url = castURL(text, title);
        if (url.isValid())
            addStep(CastStep, url);
    }
    processImagesFromMainSourceString(text);
}

QUrl ZTFetcherMoviesAmazon::castURL(const QString &text, const QString &title) const
{
    const QString behind = rangeBetweenString(text, ZTAmazonTags::MovieDatabaseLinkText, QString()).of(text);
    QString location = between(behind, QStringLiteral("location="), QStringLiteral("\""));
    if (!location.isEmpty()) {
        location = QUrl::fromPercentEncoding(location.section(QLatin1Char('&'), 0, 0).toUtf8());
        // The shop's links name its own partner host of the database.
        location.replace(QLatin1String("www"), QLatin1String("amazon"));
        const QUrl url(location);
        if (url.isValid() && !url.host().isEmpty())
            return url;
    }
    if (title.isEmpty())
        return QUrl();
    QString query = title;
    query.remove(QLatin1Char('(')).remove(QLatin1Char(')'));
    query.replace(QLatin1Char(' '), QLatin1Char('+'));
    const QDateTime original = m_dict.value(QStringLiteral("originalDatePublished")).toDateTime();
    if (original.isValid())
        return databaseURL(QStringLiteral("/find?s=all&q=%1+%2%3%4&x=0&y=0")
                               .arg(query, QStringLiteral("%28"), QString::number(original.date().year()),
                                    QStringLiteral("%29")));
    return databaseURL(QStringLiteral("/find?s=all&q=%1&x=0&y=0").arg(query));
}

void ZTFetcherMoviesAmazon::processOtherStep(const QString &step, const QString &text)
{
    if ((step != CastStep && step != CreditsStep) || text.isNull())
        return;
    QString cast = between(text, QStringLiteral("<h3>Cast</h3>"), QStringLiteral("<hr/>"));
    if (cast.isNull())
        cast = rangeFromString(text, QStringLiteral("<table class=\"cast\">"), QStringLiteral("</table>"))
                   .of(text);
    if (!cast.isNull()) {
        readCast(cast);
        return;
    }
    if (step != CastStep)
        return;
    QString results =
        rangeFromString(text, QStringLiteral("Popular Titles"), QStringLiteral("</table>")).of(text);
    if (results.isNull())
        results = rangeFromString(text, QStringLiteral("Titles (Exact Matches)"), QStringLiteral("</table>"))
                      .of(text);
    if (results.isNull() && text.contains(QLatin1String("Displaying 1 Result")))
        results = text;
    QString link = between(results, QStringLiteral("<a href=\"/title/"), QStringLiteral("\""));
    if (link.isEmpty())
        return;
    link = QStringLiteral("/title/") + link.section(QLatin1Char('?'), 0, 0);
    if (!link.endsWith(QLatin1Char('/')))
        link += QLatin1Char('/');
    addStep(CreditsStep, databaseURL(link + QStringLiteral("fullcredits#cast")));
}

void ZTFetcherMoviesAmazon::readCast(const QString &cast)
{
    QVariantList roles;
    QString rest = cast;
    for (;;) {
        const ZTRange row = rangeFromString(rest, QStringLiteral("<tr "), QStringLiteral("</tr>"));
        if (!row.isFound())
            break;
        const QString text = row.of(rest);
        const QString name =
            flat(between(text, QStringLiteral("<td class=\"nm\">"), QStringLiteral("</td>")));
        const QString character =
            flat(between(text, QStringLiteral("<td class=\"char\">"), QStringLiteral("</td>")));
        if (!name.isEmpty())
            roles << role(name, character);
        rest = rest.mid(row.end());
    }
    if (!roles.isEmpty())
        setIfRequested(ActorRolesKey, roles);
}

QUrl ZTFetcherMoviesAmazon::urlForRedirectedURL(const QUrl &url) const
{
    // A search with a single hit lands on the title's page; its cast lives
    // on the credits page below it.
    QString path = url.path();
    if (!path.contains(QLatin1String("/title/")) || path.contains(QLatin1String("fullcredits")))
        return url;
    if (!path.endsWith(QLatin1Char('/')))
        path += QLatin1Char('/');
    QUrl redirected = url;
    redirected.setPath(path + QStringLiteral("fullcredits"));
    redirected.setFragment(QStringLiteral("cast"));
    return redirected;
}

void ZTFetcherMoviesAmazonDE::readCountryDetails(const QString &, const QVariantMap &result)
{
    const QString key = keyForDictionary(result, QStringLiteral("Produktionsjahr"));
    const int year = digitsOnly(result.value(key).toString()).left(5).toInt();
    if (!key.isEmpty() && year >= 1 && year <= 9999) {
        setIfRequested(QStringLiteral("originalDatePublished"), ZTCalendar::dateInMiddleOfYear(year));
        setIfRequested(QStringLiteral("originalDatePublishedBitFlag"), 2);
    }
}

void ZTFetcherMoviesAmazonES::readCountryDetails(const QString &text, const QVariantMap &)
{
    const QString rating =
        flat(rangeBetweenString(text, QStringLiteral("Clasificado:"), QStringLiteral("<span")).of(text));
    if (!rating.isEmpty())
        setIfRequested(QStringLiteral("audienceRating"), rating);
}
