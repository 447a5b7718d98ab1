#include "lookup/ZTFetcherAmazon.h"

#include "base/ZTCalendarExtras.h"
#include "base/ZTStringExtras.h"

#include <QRegularExpression>

using namespace ZTText;

namespace {

const QString MainStep = QStringLiteral("main");
const QString UPCStep = QStringLiteral("pre");
const QString ImageStep = QStringLiteral("imageLarge");

int smallNumber(const QString &word, int limit)
{
    const QString digits = digitsOnly(word);
    if (digits.isEmpty() || digits.size() > 5)
        return 0;
    int value = 0;
    for (const QChar c : digits)
        value = value * 10 + c.digitValue();
    return value <= limit ? value : 0;
}

} // namespace

const QString ZTFetcherAmazon::s_type = QStringLiteral("amazon.com");

QString ZTFetcherAmazon::type() const
{
    return s_type;
}

QString ZTFetcherAmazon::name() const
{
    return QStringLiteral("Amazon ") + countrySuffix();
}

QString ZTFetcherAmazon::locale() const
{
    return country().countryCode;
}

QString ZTFetcherAmazon::domain() const
{
    return country().host;
}

bool ZTFetcherAmazon::isValidSubtitle(const QString &text)
{
    return !text.isEmpty() && !text.contains(QLatin1String("content="));
}

bool ZTFetcherAmazon::isValidPrice(const QString &text)
{
    if (text.isNull())
        return false;
    bool ok = false;
    const double value = text.toDouble(&ok);
    return ok && value >= 0 && value < 100000;
}

QString ZTFetcherAmazon::keyForDictionary(const QVariantMap &dictionary, const QString &key)
{
    for (auto it = dictionary.constBegin(); it != dictionary.constEnd(); ++it) {
        if (it.key().compare(key, Qt::CaseInsensitive) == 0)
            return it.key();
    }
    return QString();
}

QUrl ZTFetcherAmazon::urlOnDomain(const QString &pathAndQuery) const
{
    return QUrl(QStringLiteral("https://") + domain() + pathAndQuery);
}

QUrl ZTFetcherAmazon::productURL(const QString &code) const
{
    // The Japanese shop answers in English on this path, which is why its
    // labels are mostly English.
    const QString &path = countrySuffix() == QLatin1String("JP") ? ZTAmazonTags::JapaneseProductPath
                                                                 : ZTAmazonTags::ProductPath;
    return urlOnDomain(path.arg(QString::fromLatin1(QUrl::toPercentEncoding(code))));
}

void ZTFetcherAmazon::addStep(const QString &step, const QUrl &url)
{
    if (!m_fetchKeys.contains(step))
        m_fetchKeys.append(step);
    m_fetchDict.insert(step, url);
}

QStringList ZTFetcherAmazon::withImageKeys(QStringList keys)
{
    return keys + ZTFetchManager::imageKeys();
}

QVariantMap ZTFetcherAmazon::fetchKeyIdentifierDictionary() const
{
    return {{"asin", "originalAsin"}, {"upc", "originalUpc"}};
}

void ZTFetcherAmazon::startFetchingWithDictionary(const QVariantMap &dictionary)
{
    ZTFetcher::startFetchingWithDictionary(dictionary);
    const QString asin = noSpaces(m_dict.value(QStringLiteral("originalAsin")).toString());
    const QString upc = m_dict.value(QStringLiteral("originalUpc")).toString();
    if (!asin.isEmpty())
        addStep(MainStep, productURL(asin));
    else if (!upc.isEmpty())
        setupUPCSearch();
    m_currentFetchKey = m_fetchKeys.value(0);
    fetchURLWithCurrentKey();
}

void ZTFetcherAmazon::setupUPCSearch()
{
    const QString upc = noSpaces(m_dict.value(QStringLiteral("originalUpc")).toString());
    addStep(UPCStep,
            urlOnDomain(ZTAmazonTags::UPCSearchPath.arg(QString::fromLatin1(QUrl::toPercentEncoding(upc)))));
}

void ZTFetcherAmazon::handleUPCSearch()
{
    const QString text = stringFromWebData(m_data);
    const QString table =
        rangeFromString(text, QStringLiteral("<table class=\"search-result\""), QStringLiteral("</table>"))
            .of(text);
    const QString link =
        rangeBetweenString(table, QStringLiteral("<a href=\""), QStringLiteral("\"")).of(table);
    const QString asin = stringByTrimmingWhitespace(
        rangeBetweenString(link, QStringLiteral("product/"), QStringLiteral("?")).of(link));
    if (asin.isEmpty() || asin.contains(QLatin1Char('/'))) {
        bail();
        return;
    }
    setIfRequested(QStringLiteral("asin"), asin);
    addStep(MainStep, productURL(asin));
    advanceFetchKey();
}

void ZTFetcherAmazon::processImagesFromMainSourceString(const QString &text)
{
    if (!isRequested(QStringLiteral("image")))
        return;
    for (const QString &marker : ZTAmazonTags::ImageMarkers) {
        const QString block =
            rangeFromString(text, QLatin1Char('"') + marker + QLatin1Char('"'), QStringLiteral(".jpg"))
                .of(text);
        const QString url =
            rangeFromString(block, ZTAmazonTags::ImageURLStart, QStringLiteral(".jpg")).of(block);
        if (!url.isEmpty() && QUrl(url).isValid()) {
            addStep(ImageStep, QUrl(url));
            return;
        }
    }
}

void ZTFetcherAmazon::processData()
{
    const QString text = stringFromWebData(m_data);
    if (m_currentFetchKey == UPCStep) {
        handleUPCSearch();
        return;
    }
    if (m_currentFetchKey == MainStep) {
        // A page without a heading is an error or search page, not a product.
        if (text.isNull() || !text.contains(QLatin1String("<h1"))) {
            bail();
            return;
        }
        processMainPage(text, dictionaryForString(text, locale()));
    } else if (m_currentFetchKey == ImageStep) {
        // Shops answer a missing cover with a one-pixel picture.
        if (m_data && isValidImage(*m_data))
            m_dict.insert(ImageStep, *m_data);
    } else {
        processOtherStep(m_currentFetchKey, text);
    }
    advanceFetchKey();
}

void ZTFetcherAmazon::processOtherStep(const QString &, const QString &) {}

void ZTFetcherAmazon::setIfRequested(const QString &key, const QVariant &value)
{
    if (isRequested(key) && value.isValid() && !value.isNull())
        m_dict.insert(key, value);
}

void ZTFetcherAmazon::setDateIfRequested(const QString &key, const QString &text)
{
    if (!isRequested(key))
        return;
    if (const auto date = dateFromString(text)) {
        m_dict.insert(key, date->date);
        m_dict.insert(key + QStringLiteral("BitFlag"), date->flag);
    }
}

std::optional<ZTFetcherAmazon::ShopDate> ZTFetcherAmazon::dateFromString(const QString &text) const
{
    const QString code = locale();
    QString cleaned = text;
    cleaned.remove(QLatin1Char('(')).remove(QLatin1Char(')'));
    QStringList words;
    const bool japanese = code == QLatin1String("JP") && cleaned.contains(QLatin1Char('/'));
    if (japanese) {
        words = cleaned.split(QLatin1Char('/'), Qt::SkipEmptyParts);
    } else if (code == QLatin1String("DE") || code == QLatin1String("FR")) {
        static const QRegularExpression s_separators(QStringLiteral("[ :]"));
        words = cleaned.split(s_separators, Qt::SkipEmptyParts);
    } else {
        if (code == QLatin1String("ES"))
            cleaned.replace(QLatin1String("de "), QString());
        words = cleaned.split(QLatin1Char(' '), Qt::SkipEmptyParts);
    }
    words = words.mid(0, 3);
    if (words.isEmpty())
        return std::nullopt;
    const bool dayFirst = code == QLatin1String("DE") || code == QLatin1String("FR") ||
                          code == QLatin1String("IT") || code == QLatin1String("ES");
    QString yearWord, monthWord, dayWord;
    if (japanese && words.size() == 3) {
        // The Japanese shop writes year/month/day in figures.
        yearWord = words[0];
        monthWord = words[1];
        dayWord = words[2];
    } else if (words.size() == 3) {
        yearWord = words[2];
        monthWord = dayFirst ? words[1] : words[0];
        dayWord = dayFirst ? words[0] : words[1];
    } else if (words.size() == 2) {
        monthWord = words[0];
        yearWord = words[1];
    } else {
        yearWord = words[0];
    }
    const int year = smallNumber(yearWord, 9999);
    if (year < 1)
        return std::nullopt;
    int month = 0;
    if (japanese) {
        month = smallNumber(monthWord, 12);
    } else {
        const QString lower = monthWord.toLower();
        const QStringList names = ZTAmazonTags::months(code, kind());
        for (int i = 0; i < names.size() && !lower.isEmpty(); ++i) {
            if (lower.contains(names.at(i))) {
                month = i + 1;
                break;
            }
        }
    }
    ShopDate result;
    if (month == 0) {
        result.date = ZTCalendar::dateWithYear(year, 6, 15, 12, 0, 0);
        result.flag = 2;
    } else {
        const int day = smallNumber(dayWord, 31);
        result.date = ZTCalendar::dateWithYear(year, month, day >= 1 ? day : 15, 12, 0, 0);
        result.flag = day >= 1 ? 0 : 1;
    }
    if (!result.date.isValid())
        return std::nullopt;
    return result;
}

void ZTFetcherAmazon::takeBracketedFormat(QString *title, QString *format) const
{
    const ZTRange last =
        rangeBetweenString(*title, QStringLiteral("["), QStringLiteral("]"), ZTSearchOption::Backwards);
    if (!last.isFound())
        return;
    *format = stringByTrimmingWhitespace(last.of(*title));
    QString before = stringByTrimmingWhitespace(title->left(last.location - 1));
    // A second bracket (an edition, a series) is cut off too.
    const qsizetype open = before.lastIndexOf(QLatin1Char('['));
    if (open > 0 && before.endsWith(QLatin1Char(']')))
        before = stringByTrimmingWhitespace(before.left(open));
    *title = before;
}

void ZTFetcherAmazon::takePrice(const QVariantMap &result)
{
    for (const char *key :
         {"priceListDecimal", "priceNewDecimal", "priceUsedDecimal", "priceCollectibleDecimal"}) {
        const QVariant price = result.value(QLatin1String(key));
        if (price.isValid()) {
            setIfRequested(QStringLiteral("price"), price);
            return;
        }
    }
}

void ZTFetcherAmazon::takeNumberOfMedia(const QVariantMap &result)
{
    const int discs = smallNumber(result.value(QStringLiteral("numberOfDiscs")).toString(), 9999);
    if (discs > 0)
        setIfRequested(QStringLiteral("numberOfMedia"), discs);
}
