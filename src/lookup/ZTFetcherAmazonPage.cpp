// Reading a shop product page into a dictionary of labelled values. Pages come
// in two layouts (a details list under a heading, and the newer table without
// one); both are read, and what a page lacks is simply left out.
#include "lookup/ZTFetcherAmazon.h"

#include "base/ZTStringExtras.h"
#include "model/ZTCodeFormatter.h"

#include <QRegularExpression>

using namespace ZTText;

namespace {

const QString AmpersandMarker = QStringLiteral("[[[AMPERSAND PLACEHOLDER]]]");

QString between(const QString &text, const QString &first, const QString &second)
{
    return rangeBetweenString(text, first, second).of(text);
}

QString from(const QString &text, const QString &first, const QString &second)
{
    return rangeFromString(text, first, second).of(text);
}

QString flat(const QString &text)
{
    return stringByTrimmingWhitespace(flattenHTML(text)).trimmed();
}

// Every stretch from first through second, in order.
QStringList allFrom(const QString &text, const QString &first, const QString &second)
{
    QStringList found;
    ZTRange search(0, text.size());
    for (;;) {
        const ZTRange r = rangeFromString(text, first, second, ZTSearchOption::None, search);
        if (!r.isFound() || r.length <= 0)
            break;
        found << r.of(text);
        search = ZTRange(r.end(), text.size() - r.end());
    }
    return found;
}

// Every stretch between first and second, in order.
QStringList allBetween(const QString &text, const QString &first, const QString &second)
{
    QStringList found;
    for (const QString &stretch : allFrom(text, first, second))
        found << stretch.mid(first.size(), stretch.size() - first.size() - second.size());
    return found;
}

bool isAllDigits(const QString &text)
{
    return !text.isEmpty() && digitsOnly(text) == text;
}

bool looksLikeISBN(const QString &text)
{
    const QString code = stringByStrippingDashesAndWhitespace(text);
    return ZTCodeFormatter::isValidEAN(code, QStringLiteral("978")) ||
           ZTCodeFormatter::isValidEAN(code, QStringLiteral("979")) || isAllDigits(code);
}

QString withoutColon(QString label)
{
    label = stringByTrimmingWhitespace(label);
    if (label.endsWith(QLatin1Char(':')))
        label.chop(1);
    return stringByTrimmingWhitespace(label);
}

QString title(const QString &page)
{
    for (const QString &heading : allFrom(page, QStringLiteral("<h1 "), QStringLiteral("</h1>"))) {
        if (!heading.contains(QLatin1String("id=\"title\"")))
            continue;
        if (!heading.contains(QLatin1String("inTitle")))
            return flat(heading);
        const QStringList spans = allFrom(heading, QStringLiteral("<span"), QStringLiteral("</span>"));
        QString text = flat(spans.value(0));
        const QString second = flat(spans.value(1));
        if (containsNonWhitespace(second))
            text = QStringLiteral("%1 [%2]").arg(text, second);
        return text;
    }
    return QString();
}

QString subtitle(const QString &page)
{
    const QString metaTitle = from(page, QStringLiteral("<meta name=\"title\""), QStringLiteral("/>"));
    const QString metaContent = between(metaTitle, QStringLiteral("content=\""), QStringLiteral("\""));
    // The meta title reads "Title: Byline: ISBN: shop: department"; its first
    // part still carries the attribute, which isValidSubtitle refuses.
    QStringList parts;
    for (const QString &part : metaTitle.split(QLatin1Char(':')))
        if (!stringByTrimmingWhitespace(part).isEmpty())
            parts << stringByTrimmingWhitespace(part);
    if (!parts.isEmpty())
        parts.removeLast();
    parts.removeIf(
        [](const QString &p) { return p.contains(QLatin1String("amazon."), Qt::CaseInsensitive); });
    if (!parts.isEmpty() && !looksLikeISBN(parts.last()) && ZTFetcherAmazon::isValidSubtitle(parts.last()))
        return parts.last();

    const QString byline = between(page, QStringLiteral("</h1>"), QStringLiteral("</div>"));
    QStringList names;
    for (const QString &link : allFrom(byline, QStringLiteral("<a href="), QStringLiteral("</a>")))
        if (containsNonWhitespace(flat(link)))
            names << flat(link);
    if (!names.isEmpty())
        return names.join(QLatin1Char(','));

    const QString description = from(page, QStringLiteral("<meta name=\"description\""), QStringLiteral(">"));
    const QString bracketed =
        stringByTrimmingWhitespace(between(description, QStringLiteral("["), QStringLiteral("]")));
    if (ZTFetcherAmazon::isValidSubtitle(bracketed))
        return bracketed;

    const QStringList dashed = metaContent.split(QStringLiteral(" - "));
    if (dashed.size() >= 2 &&
        ZTFetcherAmazon::isValidSubtitle(stringByTrimmingWhitespace(dashed.at(dashed.size() - 2))))
        return stringByTrimmingWhitespace(dashed.at(dashed.size() - 2));

    const QStringList colons = metaContent.split(QLatin1Char(':'));
    for (qsizetype i = 1; i < colons.size(); ++i) {
        if (isAllDigits(stringByTrimmingWhitespace(colons.at(i)))) {
            const QString before = stringByTrimmingWhitespace(colons.at(i - 1));
            if (ZTFetcherAmazon::isValidSubtitle(before))
                return before;
            break;
        }
    }

    const QStringList bars = metaContent.split(QLatin1Char('|'));
    if (bars.size() >= 2 && isAllDigits(stringByTrimmingWhitespace(bars.at(1))) &&
        ZTFetcherAmazon::isValidSubtitle(stringByTrimmingWhitespace(bars.at(0))))
        return stringByTrimmingWhitespace(bars.at(0));
    return QString();
}

void storePrice(QVariantMap &result, const QString &prefix, const QString &digits, const QString &currency)
{
    if (digits.isEmpty() || !ZTFetcherAmazon::isValidPrice(digits))
        return;
    const double amount = digits.toDouble();
    result.insert(prefix + QStringLiteral("CurrencyCode"), currency);
    result.insert(prefix + QStringLiteral("Amount"), digits);
    // Yen have no minor unit; every other shop's figures are in cents.
    result.insert(prefix + QStringLiteral("Decimal"),
                  currency == QLatin1String("JPY") ? amount : amount / 100.0);
}

QString currencyFor(const QString &countryCode)
{
    for (const ZTAmazonTags::Country &c : ZTAmazonTags::countries())
        if (c.countryCode == countryCode)
            return c.currency;
    return QStringLiteral("USD");
}

void readPrices(const QString &page, const QString &locale, QVariantMap &result)
{
    const QString currency = currencyFor(locale);
    const std::pair<const char *, const char *> classes[] = {{"priceLarge", "priceNew"},
                                                             {"listprice", "priceList"}};
    for (const auto &[cssClass, prefix] : classes) {
        const QString tag =
            from(page, QStringLiteral("class=\"%1\"").arg(QLatin1String(cssClass)), QStringLiteral("<"));
        storePrice(result, QLatin1String(prefix),
                   digitsOnly(between(tag, QStringLiteral(">"), QStringLiteral("<"))), currency);
    }
    const std::pair<const char *, const char *> conditions[] = {
        {"new", "priceNew"}, {"used", "priceUsed"}, {"collectible", "priceCollectible"}};
    for (const auto &[condition, prefix] : conditions) {
        const QString block = from(page, QStringLiteral("condition=%1").arg(QLatin1String(condition)),
                                   QStringLiteral("</span>"));
        const QString behind = rangeBetweenString(block, QStringLiteral("\"price\""), QString()).of(block);
        storePrice(result, QLatin1String(prefix),
                   digitsOnly(between(behind, QStringLiteral(">"), QStringLiteral("<"))), currency);
    }
    if (!result.contains(QStringLiteral("priceNewDecimal"))) {
        const QString block = from(page, QStringLiteral("List Price:</span>"), QStringLiteral("</span>"));
        storePrice(result, QStringLiteral("priceNew"),
                   digitsOnly(between(block, QStringLiteral("'>"), QStringLiteral("</span>"))), currency);
    }
}

QString description(const QString &page)
{
    const QString book =
        from(page, QStringLiteral("<div id=\"bookDescription_feature_div\""), QStringLiteral("</div>"));
    if (!book.isNull()) {
        const QString text = decodeHTML(stringByTrimmingWhitespace(flattenHTML(book)));
        if (containsNonWhitespace(text))
            return stringByTrimmingWhitespace(text);
    }
    QString product = from(page, QStringLiteral("<div id=\"productDescription\""), QStringLiteral("</div>"));
    if (product.isNull())
        return QString();
    // Flattening would resolve "&amp;" twice over; the marker keeps ampersands as written.
    product.replace(QLatin1Char('&'), AmpersandMarker);
    QString text = stringByTrimmingWhitespace(flattenHTML(product));
    text.replace(AmpersandMarker, QStringLiteral("&"));
    return containsNonWhitespace(text) ? text : QString();
}

void readLabelledValues(const QString &block, const QString &labelStart, const QString &labelEnd,
                        const QString &valueEnd, QVariantMap &result)
{
    bool first = true;
    ZTRange search(0, block.size());
    for (;;) {
        const ZTRange label = rangeBetweenString(block, labelStart, labelEnd, ZTSearchOption::None, search);
        if (!label.isFound())
            break;
        const qsizetype valueStart = label.end() + labelEnd.size();
        const ZTRange value = rangeBetweenString(block, QString(), valueEnd, ZTSearchOption::None,
                                                 ZTRange(valueStart, block.size() - valueStart));
        // Without an end behind this label no later label has a value either.
        if (!value.isFound())
            break;
        const QString labelText = label.of(block);
        if (first) {
            result.insert(QStringLiteral("_firstKey"), stringByTrimmingWhitespace(decodeHTML(labelText)));
            first = false;
        }
        const QString key = withoutColon(flattenHTML(labelText));
        if (!key.isEmpty())
            result.insert(key, flat(value.of(block)));
        search = ZTRange(valueStart, block.size() - valueStart);
    }
}

void readDetails(const QString &page, const QString &locale, QVariantMap &result)
{
    const QString headingTag = QStringLiteral("<h2>%1</h2>").arg(ZTAmazonTags::heading(locale));
    const qsizetype start = page.indexOf(headingTag, 0, Qt::CaseInsensitive);
    if (start >= 0) {
        const qsizetype bodyStart = start + headingTag.size();
        qsizetype end = page.indexOf(QLatin1String("<h2"), bodyStart, Qt::CaseInsensitive);
        if (end < 0)
            end = page.size();
        const QString block = page.mid(bodyStart, end - bodyStart);
        readLabelledValues(block, QStringLiteral("<b>"), QStringLiteral("</b>"), QStringLiteral("</li>"),
                           result);
        for (const QString &key : ZTAmazonTags::keyList()) {
            bool found = false;
            for (const QString &label : ZTAmazonTags::labels(locale, key)) {
                for (const QString &form : {QStringLiteral("<b>%1:</b>"), QStringLiteral("<b>%1 :</b>"),
                                            QStringLiteral("<b>%1: </b>")}) {
                    const QString raw = between(block, form.arg(label), QStringLiteral("</li>"));
                    if (raw.isNull())
                        continue;
                    const bool keepRaw = key == QLatin1String("audienceRating");
                    result.insert(key, stringByTrimmingWhitespace(keepRaw ? raw : decodeHTML(raw)));
                    found = true;
                    break;
                }
                if (found)
                    break;
            }
        }
        return;
    }
    // The newer layout has no heading: the format sits beside the product's
    // check box and the details form a table.
    const QString thisItem = between(page, QStringLiteral("<strong>This item:"), QStringLiteral("</label>"));
    const QString format =
        flat(rangeBetweenString(thisItem, QStringLiteral("</span>"), QString()).of(thisItem));
    if (containsNonWhitespace(format))
        result.insert(QStringLiteral("format"), format);
    const QString block = from(page, QStringLiteral("<div id='nonHeroSection"), QStringLiteral("</div>"));
    if (block.isNull())
        return;
    readLabelledValues(block, QStringLiteral("<td class='a-span3'>"), QStringLiteral("</td>"),
                       QStringLiteral("</td>"), result);
    for (const QString &key : ZTAmazonTags::keyList()) {
        for (const QString &label : ZTAmazonTags::labels(locale, key)) {
            const QString raw =
                between(block, QStringLiteral("<span>%1</span></td>").arg(label), QStringLiteral("</tr>"));
            if (raw.isNull())
                continue;
            result.insert(key, key == QLatin1String("audienceRating") ? stringByTrimmingWhitespace(raw)
                                                                      : flat(raw));
            break;
        }
    }
}

void cleanValues(QVariantMap &result)
{
    const QString ratingKey = QStringLiteral("audienceRating");
    if (result.contains(ratingKey)) {
        const QString raw = result.value(ratingKey).toString();
        QString rating = stringByTrimmingWhitespace(decodeHTML(raw));
        const qsizetype paren = rating.indexOf(QLatin1Char('('));
        if (paren >= 0)
            rating = stringByTrimmingWhitespace(rating.left(paren));
        if (rating.isEmpty())
            rating = between(raw, QStringLiteral("alt=\""), QStringLiteral("\""));
        if (rating.isEmpty())
            result.remove(ratingKey);
        else
            result.insert(ratingKey, rating);
    }
    for (const QString &key : {QStringLiteral("actors"), QStringLiteral("directors")}) {
        if (!result.contains(key))
            continue;
        QStringList names;
        for (const QString &name : flattenHTML(result.value(key).toString()).split(QLatin1Char(',')))
            if (containsNonWhitespace(name))
                names << stringByTrimmingWhitespace(name).trimmed();
        result.insert(key, names);
    }
    const QString durationKey = QStringLiteral("duration");
    if (result.contains(durationKey)) {
        const QString digits = digitsOnly(result.value(durationKey).toString()).left(6);
        if (digits.isEmpty())
            result.remove(durationKey);
        else
            result.insert(durationKey, digits.toInt());
    }
    const QString regionKey = QStringLiteral("regionCode");
    if (result.contains(regionKey)) {
        const QString region = result.value(regionKey).toString();
        if (region.contains(QLatin1String("all"), Qt::CaseInsensitive))
            result.insert(regionKey, QStringLiteral("ALL"));
        else
            result.insert(regionKey, digitsOnly(region.section(QLatin1Char('('), 0, 0)));
    }
}

// Track lists come in four shapes; the first that gives entries wins. A
// list on a page of its own is noted in "_tracksURL".
QStringList tracks(const QString &page, QVariantMap &result)
{
    QStringList list;
    if (page.contains(QLatin1String("id=\"albumTrackList\""))) {
        for (const QString &cell :
             allBetween(page, QStringLiteral("<td class=\"titleCol\">"), QStringLiteral("</td>")))
            list << stringByTrimmingWhitespace(decodeHTML(cell));
    }
    list = ZTFetcherAmazon::cleanTracks(list);
    if (list.isEmpty() &&
        (page.contains(QLatin1String("MusicTracksText")) || page.contains(QLatin1String("dp_tracks_all")))) {
        const QString body = between(page, QStringLiteral("<tbody"), QStringLiteral("</tbody>"));
        const QString link = between(body, QStringLiteral("<a href=\""), QStringLiteral("\">"));
        if (!link.isEmpty())
            result.insert(QStringLiteral("_tracksURL"), link.section(QLatin1Char('#'), 0, 0));
        list = ZTFetcherAmazon::cleanTracks(ZTFetcherAmazon::trackCells(body));
    }
    if (list.isEmpty()) {
        for (const QString &cell :
             allBetween(page, QStringLiteral("TrackTitleColumn"), QStringLiteral("</td>")))
            list << flat(from(cell, QStringLiteral("<a "), QStringLiteral("</a>")));
        list = ZTFetcherAmazon::cleanTracks(list);
    }
    if (list.isEmpty()) {
        const QString area =
            between(page, QStringLiteral("toggleCDSamplePlayback"), QStringLiteral("<script"));
        for (const QString &row :
             allBetween(area, QStringLiteral("div class=\"a-row\">"), QStringLiteral("</div>")))
            list << flat(row);
        list = ZTFetcherAmazon::cleanTracks(list);
    }
    return list;
}

} // namespace

QStringList ZTFetcherAmazon::trackCells(const QString &body)
{
    QStringList list;
    for (const QString &cell : allBetween(body, QStringLiteral("<td>"), QStringLiteral("</td>")))
        list << flat(cell);
    return list;
}

QStringList ZTFetcherAmazon::cleanTracks(const QStringList &entries)
{
    static const QRegularExpression s_number(QStringLiteral("^\\s*\\d+\\.\\s?"));
    QStringList list;
    for (QString entry : entries) {
        entry.remove(s_number);
        entry = stringByTrimmingWhitespace(entry);
        if (!entry.isEmpty())
            list << entry;
    }
    return list;
}

QVariantMap ZTFetcherAmazon::dictionaryForString(const QString &source, const QString &locale) const
{
    QString page = source;
    page.replace(QLatin1String("&nbsp;"), QLatin1String(" "));
    page.replace(QChar(0x00A0), QLatin1Char(' '));
    page.replace(QChar(0xFF1A), QLatin1Char(':'));

    QVariantMap result;
    const QString pageTitle = title(page);
    if (containsNonWhitespace(pageTitle))
        result.insert(QStringLiteral("title"), pageTitle);
    const QString byline = subtitle(page);
    if (!byline.isEmpty())
        result.insert(QStringLiteral("subtitle"), byline);
    if (isRequested(QStringLiteral("artists"))) {
        QStringList artists;
        for (const QString &span :
             allFrom(page, QStringLiteral("<span class=\"author\""), QStringLiteral("</span>")))
            if (containsNonWhitespace(flat(from(span, QStringLiteral("<a "), QStringLiteral("</a>")))))
                artists << flat(from(span, QStringLiteral("<a "), QStringLiteral("</a>")));
        if (!artists.isEmpty())
            result.insert(QStringLiteral("artists"), artists);
    }
    readPrices(page, locale, result);
    const QString text = description(page);
    if (!text.isEmpty())
        result.insert(QStringLiteral("productDescription"), text);
    readDetails(page, locale, result);
    cleanValues(result);

    if (isRequested(QStringLiteral("tracks"))) {
        const QStringList list = tracks(page, result);
        if (!list.isEmpty())
            result.insert(QStringLiteral("tracks"), list);
    }
    return result;
}
