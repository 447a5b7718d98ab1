#include "model/ZTMoneyFormatter.h"
#include "support/ZTTestMain.h"

#include <QtTest>

class TestMoneyFormatter : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void string_data()
    {
        QTest::addColumn<QString>("currency");
        QTest::addColumn<double>("value");
        QTest::addColumn<QString>("expected");

        QTest::newRow("USD") << "USD" << 1234.5 << "$1,234.50";
        QTest::newRow("USD zero") << "USD" << 0.0 << "$0.00";
        QTest::newRow("USD negative") << "USD" << -12.0 << "-$12.00";
        QTest::newRow("USD small") << "USD" << 0.5 << "$0.50";
        QTest::newRow("USD millions") << "USD" << 1234567.891 << "$1,234,567.89";
        QTest::newRow("USD negative thousands") << "USD" << -1000.0 << "-$1,000.00";
        QTest::newRow("USD rounds to zero") << "USD" << -0.004 << "$0.00";
        QTest::newRow("USD negative zero") << "USD" << -0.0 << "$0.00";
        QTest::newRow("USD half to even down") << "USD" << 0.125 << "$0.12";
        QTest::newRow("USD half to even up") << "USD" << 0.375 << "$0.38";
        QTest::newRow("USD rounding carries") << "USD" << 999.999 << "$1,000.00";
        QTest::newRow("USD huge") << "USD" << 1e20 << "$100,000,000,000,000,000,000.00";
        QTest::newRow("HKD symbol") << "HKD" << 88.0 << "HK$88.00";
        QTest::newRow("GBP") << "GBP" << 7.99 << QStringLiteral("£7.99");
        QTest::newRow("EUR decimal comma") << "EUR" << 1234.5 << QStringLiteral("€1.234,50");
        QTest::newRow("EUR zero") << "EUR" << 0.0 << QStringLiteral("€0,00");
        QTest::newRow("EUR negative") << "EUR" << -3.25 << QStringLiteral("-€3,25");
        QTest::newRow("BRL decimal comma") << "BRL" << 49.9 << QStringLiteral("R$49,90");
        QTest::newRow("JPY whole units") << "JPY" << 1500.0 << QStringLiteral("¥1,500");
        QTest::newRow("JPY rounds") << "JPY" << 1499.6 << QStringLiteral("¥1,500");
        QTest::newRow("JPY zero") << "JPY" << 0.0 << QStringLiteral("¥0");
        QTest::newRow("JPY negative") << "JPY" << -20000.0 << QStringLiteral("-¥20,000");
        QTest::newRow("unknown code uses USD") << "XXX" << 5.0 << "$5.00";
        QTest::newRow("empty code uses USD") << "" << 5.0 << "$5.00";
    }

    void string()
    {
        QFETCH(QString, currency);
        QFETCH(double, value);
        QFETCH(QString, expected);
        QCOMPARE(ZTMoneyFormatter::formatterForLocale(currency).string(value), expected);
    }

    void notANumberDoesNotCrash()
    {
        const ZTMoneyFormatter &usd = ZTMoneyFormatter::formatterForLocale("USD");
        QCOMPARE(usd.string(std::numeric_limits<double>::quiet_NaN()), QStringLiteral("NaN"));
        QCOMPARE(usd.string(-std::numeric_limits<double>::infinity()), QStringLiteral("-$∞"));
        QVERIFY(!usd.string(std::numeric_limits<double>::max()).isEmpty());
    }

    void formattersAreSharedPerCurrency()
    {
        QCOMPARE(&ZTMoneyFormatter::formatterForLocale("EUR"), &ZTMoneyFormatter::formatterForLocale("EUR"));
        QVERIFY(&ZTMoneyFormatter::formatterForLocale("EUR") != &ZTMoneyFormatter::formatterForLocale("USD"));
        QCOMPARE(ZTMoneyFormatter::formatterForLocale("nope").currencyCode(), QStringLiteral("USD"));
    }

    void currencyWithoutSymbolGetsDollar()
    {
        const ZTMoneyFormatter formatter = ZTMoneyFormatter::formatterForCurrency("QQQ");
        QCOMPARE(formatter.symbol(), QStringLiteral("$"));
        QCOMPARE(formatter.string(2.5), QStringLiteral("$2.50"));
    }

    void commaDecimalGroupsWithFullStop()
    {
        const ZTMoneyFormatter &eur = ZTMoneyFormatter::formatterForLocale("EUR");
        QCOMPARE(eur.decimalSeparator(), QChar(u','));
        QCOMPARE(eur.groupingSeparator(), QChar(u'.'));
    }

    void customFormatWithSuffix()
    {
        const ZTMoneyFormatter formatter("SEK", "kr", "#,##0.00 %@;0.00 %@;(#,##0.00 %@)");
        QCOMPARE(formatter.string(1234.5), QStringLiteral("1,234.50 kr"));
        QCOMPARE(formatter.string(0), QStringLiteral("0.00 kr"));
        QCOMPARE(formatter.string(-2), QStringLiteral("(2.00 kr)"));
    }

    void numberFromString_data()
    {
        QTest::addColumn<QString>("currency");
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("ok");
        QTest::addColumn<double>("value");
        QTest::newRow("formatted USD") << "USD"
                                       << "$1,234.50" << true << 1234.5;
        QTest::newRow("bare number") << "USD"
                                     << "12" << true << 12.0;
        QTest::newRow("formatted EUR") << "EUR" << QStringLiteral("€1.234,50") << true << 1234.5;
        QTest::newRow("below minimum") << "USD"
                                       << "-$3.00" << false << 0.0;
        QTest::newRow("not a number") << "USD"
                                      << "twelve" << false << 0.0;
        QTest::newRow("empty") << "USD"
                               << "" << false << 0.0;
    }

    void numberFromString()
    {
        QFETCH(QString, currency);
        QFETCH(QString, text);
        QFETCH(bool, ok);
        QFETCH(double, value);
        double parsed = -1;
        QCOMPARE(ZTMoneyFormatter::formatterForLocale(currency).numberFromString(text, &parsed), ok);
        if (ok)
            QCOMPARE(parsed, value);
    }

    void formatsReadBack()
    {
        for (const QString &currency : {"USD", "EUR", "JPY"}) {
            const ZTMoneyFormatter &formatter = ZTMoneyFormatter::formatterForLocale(currency);
            double value = 0;
            QVERIFY(formatter.numberFromString(formatter.string(98765.0), &value));
            QCOMPARE(value, 98765.0);
        }
    }
};

ZT_TEST_MAIN(TestMoneyFormatter)
#include "tst_moneyformatter.moc"
