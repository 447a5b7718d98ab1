#include "model/ZTMoneyFormatter.h"

#include "model/ZTItemResources.h"

#include <QHash>
#include <QLocale>

#include <cmath>

namespace {

const QString SymbolPlaceholder = QStringLiteral("%@");
const QString StandardFormat = QStringLiteral("%@#,##0.00;%@0.00;-%@#,##0.00");
const QString WholeUnitFormat = QStringLiteral("%@#,##0;%@0;-%@#,##0");
const QString FallbackSymbol = QStringLiteral("$");
const QString FallbackCurrency = QStringLiteral("USD");

bool isPatternCharacter(QChar c)
{
    return c == u'#' || c == u'0' || c == u',' || c == u'.';
}

int fractionDigitsOf(const QString &section)
{
    const qsizetype point = section.indexOf(QLatin1Char('.'));
    if (point < 0)
        return 0;
    int digits = 0;
    for (qsizetype i = point + 1; i < section.size() && (section.at(i) == u'0' || section.at(i) == u'#'); ++i)
        ++digits;
    return digits;
}

QString grouped(const QString &integerDigits, QChar separator)
{
    QString result;
    result.reserve(integerDigits.size() + integerDigits.size() / 3);
    const qsizetype count = integerDigits.size();
    for (qsizetype i = 0; i < count; ++i) {
        if (i > 0 && (count - i) % 3 == 0)
            result.append(separator);
        result.append(integerDigits.at(i));
    }
    return result;
}

} // namespace

ZTMoneyFormatter::ZTMoneyFormatter(const QString &currencyCode, const QString &symbol, const QString &format,
                                   QChar decimalSeparator)
    : m_currencyCode(currencyCode), m_symbol(symbol), m_decimalSeparator(decimalSeparator),
      // A decimal comma leaves the comma unusable for grouping: "1,234,50"
      // could not be read back. Such currencies group with a full stop.
      m_groupingSeparator(decimalSeparator == u',' ? QLatin1Char('.') : QLatin1Char(','))
{
    const QStringList sections = format.split(QLatin1Char(';'));
    m_positive = parseSection(sections.value(0), symbol);
    m_zero = sections.size() > 1 ? parseSection(sections.at(1), symbol) : m_positive;
    if (sections.size() > 2) {
        m_negative = parseSection(sections.at(2), symbol);
    } else {
        m_negative = m_positive;
        m_negative.prefix.prepend(QLatin1Char('-'));
    }
    m_fractionDigits = fractionDigitsOf(sections.value(0));
}

ZTMoneyFormatter::Section ZTMoneyFormatter::parseSection(const QString &section, const QString &symbol)
{
    Section result;
    qsizetype start = 0;
    while (start < section.size() && !(section.at(start) == u'#' || section.at(start) == u'0'))
        ++start;
    qsizetype end = start;
    while (end < section.size() && isPatternCharacter(section.at(end)))
        ++end;
    result.prefix = section.left(start).replace(SymbolPlaceholder, symbol);
    result.suffix = section.mid(end).replace(SymbolPlaceholder, symbol);
    result.grouped = section.mid(start, end - start).contains(QLatin1Char(','));
    return result;
}

// The rounded magnitude as plain digits with the fraction digits last, rounded
// half to even as the platform's formatters do.
QString ZTMoneyFormatter::digits(double magnitude, bool *isZero) const
{
    // Past 1e17 a double holds only whole numbers, so there is nothing to round
    // and the scaled value could leave the range of a double.
    if (magnitude >= 1e17) {
        *isZero = false;
        return QString::number(magnitude, 'f', 0) + QString(m_fractionDigits, QLatin1Char('0'));
    }
    const long double scaled = std::nearbyint(static_cast<long double>(magnitude) *
                                              std::pow(10.0L, static_cast<long double>(m_fractionDigits)));
    *isZero = scaled == 0.0L;
    QString text = QString::number(static_cast<double>(scaled), 'f', 0);
    if (text.size() <= m_fractionDigits)
        text = text.rightJustified(m_fractionDigits + 1, QLatin1Char('0'));
    return text;
}

QString ZTMoneyFormatter::string(double value) const
{
    if (std::isnan(value))
        return QStringLiteral("NaN");
    if (std::isinf(value))
        return (value < 0 ? m_negative.prefix : m_positive.prefix) + QStringLiteral("∞");

    bool isZero = false;
    const QString all = digits(std::fabs(value), &isZero);
    // An amount that rounds to nothing is shown as zero, never as "-$0.00".
    const Section &section = isZero ? m_zero : (value < 0 ? m_negative : m_positive);
    QString integerPart = all.left(all.size() - m_fractionDigits);
    if (section.grouped)
        integerPart = grouped(integerPart, m_groupingSeparator);
    QString text = section.prefix + integerPart;
    if (m_fractionDigits > 0)
        text += m_decimalSeparator + all.right(m_fractionDigits);
    return text + section.suffix;
}

bool ZTMoneyFormatter::numberFromString(const QString &text, double *value) const
{
    QString plain = text.trimmed();
    if (!m_symbol.isEmpty())
        plain.remove(m_symbol);
    plain.remove(m_groupingSeparator);
    plain.replace(m_decimalSeparator, QLatin1Char('.'));
    plain = plain.trimmed();
    bool ok = false;
    const double number = QLocale::c().toDouble(plain, &ok);
    if (!ok || !std::isfinite(number) || number < minimum())
        return false;
    if (value)
        *value = number;
    return true;
}

ZTMoneyFormatter ZTMoneyFormatter::formatterForCurrency(const QString &currencyCode)
{
    QString symbol = ZTItemResources::currencyCodeToCurrencySymbolDict().value(currencyCode).toString();
    if (symbol.isEmpty())
        symbol = FallbackSymbol;
    const bool wholeUnits = currencyCode == QLatin1String("JPY");
    const bool decimalComma = currencyCode == QLatin1String("EUR") || currencyCode == QLatin1String("BRL");
    return ZTMoneyFormatter(currencyCode, symbol, wholeUnits ? WholeUnitFormat : StandardFormat,
                            decimalComma ? QLatin1Char(',') : QLatin1Char('.'));
}

const ZTMoneyFormatter &ZTMoneyFormatter::formatterForLocale(const QString &currencyCode)
{
    static const QHash<QString, ZTMoneyFormatter> s_formatters = [] {
        QHash<QString, ZTMoneyFormatter> formatters;
        for (const QString &code : ZTItemResources::priceLocales())
            formatters.insert(code, formatterForCurrency(code));
        return formatters;
    }();
    // Kept apart so that a price-locale table without "USD" still has a fallback.
    static const ZTMoneyFormatter s_fallback = formatterForCurrency(FallbackCurrency);

    auto found = s_formatters.constFind(currencyCode);
    if (found == s_formatters.constEnd())
        found = s_formatters.constFind(FallbackCurrency);
    return found == s_formatters.constEnd() ? s_fallback : found.value();
}
