#include "model/ZTItemResources.h"
#include "support/ZTTestMain.h"

#include <QtTest>

#include <QTemporaryDir>

class TestItemResources : public QObject {
    Q_OBJECT

    QTemporaryDir m_dir;

    QString writeFile(const QString &name, const QByteArray &content)
    {
        const QString path = m_dir.filePath(name);
        QFile file(path);
        if (!file.open(QIODevice::WriteOnly))
            return {};
        file.write(content);
        return path;
    }

private Q_SLOTS:
    void localesHoldEveryShopAndArticleCode()
    {
        const QStringList &locales = ZTItemResources::locales();
        for (const char *code :
             {"US", "AU", "CN", "NL", "PL", "GB", "DE", "JP", "FR", "CA", "IT", "ES", "EN"})
            QVERIFY2(locales.contains(QLatin1String(code)), code);
        for (const QString &code : locales)
            QVERIFY2(code.size() == 2 && code == code.toUpper(), qPrintable(code));
        QCOMPARE(QSet<QString>(locales.begin(), locales.end()).size(), locales.size());
    }

    void priceLocalesHoldRequiredCurrencies()
    {
        const QStringList &currencies = ZTItemResources::priceLocales();
        for (const char *code : {"USD", "HKD", "EUR", "BRL", "JPY", "GBP", "CAD"})
            QVERIFY2(currencies.contains(QLatin1String(code)), code);
        for (const QString &code : currencies)
            QVERIFY2(code.size() == 3 && code == code.toUpper(), qPrintable(code));
    }

    void everyCountryMapsToAKnownCurrency()
    {
        const QVariantMap &currencies = ZTItemResources::countryCodeToCurrencyCodeDict();
        const QStringList &priceLocales = ZTItemResources::priceLocales();
        QCOMPARE(currencies.value("US").toString(), QStringLiteral("USD"));
        QCOMPARE(currencies.value("DE").toString(), QStringLiteral("EUR"));
        QCOMPARE(currencies.value("JP").toString(), QStringLiteral("JPY"));
        for (auto it = currencies.cbegin(); it != currencies.cend(); ++it) {
            QVERIFY2(ZTItemResources::locales().contains(it.key()), qPrintable(it.key()));
            QVERIFY2(priceLocales.contains(it.value().toString()), qPrintable(it.value().toString()));
        }
    }

    void everyCurrencyHasASymbol()
    {
        const QVariantMap &symbols = ZTItemResources::currencyCodeToCurrencySymbolDict();
        QCOMPARE(symbols.value("USD").toString(), QStringLiteral("$"));
        QCOMPARE(symbols.value("EUR").toString(), QStringLiteral("€"));
        for (const QString &code : ZTItemResources::priceLocales())
            QVERIFY2(!symbols.value(code).toString().isEmpty(), qPrintable(code));
    }

    void deweyNamesCoverTheSections()
    {
        const QVariantMap &names = ZTItemResources::deweyClassNames();
        QCOMPARE(names.value("500").toString(), QStringLiteral("Science"));
        QCOMPARE(names.value("823").toString(), QStringLiteral("English fiction"));
        QCOMPARE(names.value("942").toString(), QStringLiteral("England & Wales"));
        // Sections left unassigned in the classification have no name.
        QVERIFY(!names.contains("040"));
        QVERIFY(names.size() > 900);
        for (int division = 0; division < 1000; division += 10) {
            const QString key = QStringLiteral("%1").arg(division, 3, 10, QLatin1Char('0'));
            // 040 is the one division left unassigned.
            if (key == QLatin1String("040"))
                continue;
            QVERIFY2(!names.value(key).toString().isEmpty(), qPrintable(key));
        }
        for (auto it = names.cbegin(); it != names.cend(); ++it) {
            bool isNumber = false;
            it.key().toInt(&isNumber);
            QVERIFY2(it.key().size() == 3 && isNumber, qPrintable(it.key()));
        }
    }

    void accessorsReturnTheSameTable()
    {
        QCOMPARE(&ZTItemResources::locales(), &ZTItemResources::locales());
        QCOMPARE(&ZTItemResources::deweyClassNames(), &ZTItemResources::deweyClassNames());
    }

    void missingFilesGiveEmptyTables()
    {
        const QString missing = m_dir.filePath("absent.json");
        QVERIFY(ZTItemResources::loadStringArray(missing).isEmpty());
        QVERIFY(ZTItemResources::loadJsonObject(missing).isEmpty());
        QVERIFY(ZTItemResources::loadPropertyListStrings(m_dir.filePath("absent.plist")).isEmpty());
    }

    void malformedFiles_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::newRow("empty") << QByteArray();
        QTest::newRow("truncated json") << QByteArray("[\"US\", \"GB");
        QTest::newRow("wrong root") << QByteArray("\"US\"");
        QTest::newRow("binary noise") << QByteArray("\x00\xff\xfe bplist00\x01\x02", 16);
        QTest::newRow("truncated binary plist") << QByteArray("bplist00\xd1\x01\x02", 11);
        QTest::newRow("xml not a plist") << QByteArray("<?xml version=\"1.0\"?><html><body/></html>");
        QTest::newRow("unterminated plist") << QByteArray("<?xml version=\"1.0\"?><plist><dict><key>500");
    }

    void malformedFiles()
    {
        QFETCH(QByteArray, content);
        const QString path = writeFile(QStringLiteral("bad-%1").arg(QTest::currentDataTag()), content);
        QVERIFY(!path.isEmpty());
        QVERIFY(ZTItemResources::loadStringArray(path).isEmpty());
        QVERIFY(ZTItemResources::loadJsonObject(path).isEmpty());
        QVERIFY(ZTItemResources::loadPropertyListStrings(path).isEmpty());
    }

    void wrongTypesAreLeftOut()
    {
        const QString json = writeFile("mixed.json", "[\"US\", 3, null, {\"a\": 1}, \"GB\"]");
        QCOMPARE(ZTItemResources::loadStringArray(json), (QStringList{"US", "GB"}));
        const QString plist = writeFile("mixed.plist", "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                                                       "<plist version=\"1.0\"><dict>"
                                                       "<key>100</key><string>Philosophy</string>"
                                                       "<key>200</key><integer>2</integer>"
                                                       "<key>300</key><array/>"
                                                       "</dict></plist>");
        QCOMPARE(ZTItemResources::loadPropertyListStrings(plist), (QVariantMap{{"100", "Philosophy"}}));
    }
};

ZT_TEST_MAIN(TestItemResources)
#include "tst_itemresources.moc"
