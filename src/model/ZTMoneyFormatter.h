#pragma once

#include <QString>

// Formats amounts of one currency for display: "$1,234.50", "$0.00",
// "-$12.00". One shared formatter exists per currency of the price-locale
// table; formatterForLocale() hands them out.
class ZTMoneyFormatter {
public:
    // A format has three sections separated by ";" (positive; zero; negative).
    // "%@" stands for the symbol; "#,##0" is the grouped integer part and the
    // zeros after "." the fraction digits.
    ZTMoneyFormatter(const QString &currencyCode, const QString &symbol, const QString &format,
                     QChar decimalSeparator = QLatin1Char('.'));

    // The shared formatter of a currency code; codes without one get "USD".
    static const ZTMoneyFormatter &formatterForLocale(const QString &currencyCode);
    // Builds the formatter of a currency by the program's rules: the symbol from
    // the currency table or "$", whole units for yen, decimal commas for the
    // euro and the real.
    static ZTMoneyFormatter formatterForCurrency(const QString &currencyCode);

    QString string(double value) const;
    // Reads a typed amount back: symbol and grouping are optional. Amounts below
    // the minimum (zero) and text that is not a number are refused.
    bool numberFromString(const QString &text, double *value) const;

    QString currencyCode() const { return m_currencyCode; }
    QString symbol() const { return m_symbol; }
    QChar decimalSeparator() const { return m_decimalSeparator; }
    QChar groupingSeparator() const { return m_groupingSeparator; }
    int fractionDigits() const { return m_fractionDigits; }
    double minimum() const { return 0.0; }

private:
    struct Section {
        QString prefix;
        QString suffix;
        bool grouped = false;
    };
    static Section parseSection(const QString &section, const QString &symbol);
    QString digits(double magnitude, bool *isZero) const;

    QString m_currencyCode;
    QString m_symbol;
    QChar m_decimalSeparator;
    QChar m_groupingSeparator;
    int m_fractionDigits = 2;
    Section m_positive;
    Section m_zero;
    Section m_negative;
};
