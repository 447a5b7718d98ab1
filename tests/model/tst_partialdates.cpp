#include "model/ZTDateBit.h"
#include "model/ZTDateFormatObject.h"
#include "model/ZTDateFormatter.h"
#include "model/ZTDateUtil.h"
#include "model/ZTPatternDateFormatter.h"
#include "support/ZTTestMain.h"

#include <QtTest>

namespace {
// Stands in for a translation table so tests can see which texts are looked up.
class MarkingTranslator : public QTranslator {
public:
    QString translate(const char *context, const char *sourceText, const char *, int) const override
    {
        if (qstrcmp(context, "Localizable") != 0)
            return QString();
        return QStringLiteral("<%1>").arg(QString::fromUtf8(sourceText));
    }
    bool isEmpty() const override { return false; }
};

ZTDateFormatObject object(const char *year, const char *month, const char *day, const char *delimiter,
                          uint order)
{
    return ZTDateFormatObject(QString::fromLatin1(year), QString::fromLatin1(month), QString::fromLatin1(day),
                              QString::fromLatin1(delimiter), order);
}

// The date as far as the bit knows it: unknown parts are the first month or day.
QDate truncated(const QDate &date, ZTDateBit bit)
{
    return QDate(date.year(), bit.knowsMonth() ? date.month() : 1, bit.knowsDay() ? date.day() : 1);
}
} // namespace

Q_DECLARE_METATYPE(ZTDateFormatObject)

class TestPartialDates : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void storedBitReadsAsAPrecision_data()
    {
        QTest::addColumn<QVariant>("stored");
        QTest::addColumn<int>("bit");
        QTest::newRow("0 full date") << QVariant(0) << 0;
        QTest::newRow("1 year and month") << QVariant(1) << 1;
        QTest::newRow("2 year") << QVariant(2) << 2;
        QTest::newRow("3 reads as year") << QVariant(3) << 2;
        QTest::newRow("5 reads as year") << QVariant(5) << 2;
        QTest::newRow("huge reads as year") << QVariant(Q_INT64_C(1) << 40) << 2;
        QTest::newRow("negative reads as year") << QVariant(-1) << 2;
        QTest::newRow("missing is a full date") << QVariant() << 0;
        QTest::newRow("text is a full date") << QVariant(QStringLiteral("abc")) << 0;
        QTest::newRow("numeric text") << QVariant(QStringLiteral("1")) << 1;
    }
    void storedBitReadsAsAPrecision()
    {
        QFETCH(QVariant, stored);
        QFETCH(int, bit);
        QCOMPARE(ZTDateBit::fromVariant(stored).value(), bit);
    }

    void clickingAdvancesTheBitInACycle()
    {
        QCOMPARE(ZTDateBit(ZTDateBit::FullDate).next(), ZTDateBit(ZTDateBit::YearMonth));
        QCOMPARE(ZTDateBit(ZTDateBit::YearMonth).next(), ZTDateBit(ZTDateBit::Year));
        QCOMPARE(ZTDateBit(ZTDateBit::Year).next(), ZTDateBit(ZTDateBit::FullDate));
        QCOMPARE(ZTDateBit::fromStored(5).next(), ZTDateBit(ZTDateBit::FullDate));
    }

    void formatForEachOrderAndBit_data()
    {
        QTest::addColumn<uint>("order");
        QTest::addColumn<QStringList>("formats"); // for bits 0, 1, 2 and 5
        QTest::newRow("unknown acts as month first") << 0u << QStringList{"M-d-y", "M-y", "y", "y"};
        QTest::newRow("month day year") << 1u << QStringList{"M-d-y", "M-y", "y", "y"};
        QTest::newRow("day month year") << 2u << QStringList{"d-M-y", "M-y", "y", "y"};
        QTest::newRow("year month day") << 3u << QStringList{"y-M-d", "y-M", "y", "y"};
        QTest::newRow("year day month") << 4u << QStringList{"y-d-M", "y-M", "y", "y"};
        QTest::newRow("out of range acts as month first") << 9u << QStringList{"M-d-y", "M-y", "y", "y"};
    }
    void formatForEachOrderAndBit()
    {
        QFETCH(uint, order);
        QFETCH(QStringList, formats);
        const ZTDateFormatObject formatObject = object("y", "M", "d", "-", order);
        const int bits[] = {0, 1, 2, 5};
        for (int i = 0; i < 4; ++i)
            QCOMPARE(formatObject.dateFormatWithDateBit(ZTDateBit::fromStored(bits[i])), formats[i]);
    }

    void localizedFormatLooksUpUpperCasedParts()
    {
        const ZTDateFormatObject formatObject =
            object("yyyy", "M", "dd", ".", ZTDateFormatObject::DayMonthYear);
        QCOMPARE(formatObject.localizedDateFormatWithDateBit(ZTDateBit::FullDate),
                 QStringLiteral("DD.M.YYYY"));
        MarkingTranslator translator;
        QCoreApplication::installTranslator(&translator);
        const QString full = formatObject.localizedDateFormatWithDateBit(ZTDateBit::FullDate);
        const QString year = formatObject.localizedDateFormatWithDateBit(ZTDateBit::Year);
        QCoreApplication::removeTranslator(&translator);
        QCOMPARE(full, QStringLiteral("<DD>.<M>.<YYYY>"));
        QCOMPARE(year, QStringLiteral("<YYYY>"));
    }

    void learnsTheOrderFromAShortFormat_data()
    {
        QTest::addColumn<QString>("shortFormat");
        QTest::addColumn<ZTDateFormatObject>("expected");
        const ZTDateFormatObject fallback = ZTDateFormatObject::fallback();
        QTest::newRow("d.m.yy") << "d.m.yy" << object("yyyy", "M", "d", ".", 2);
        QTest::newRow("upper-case month") << "d.M.yy" << object("yyyy", "M", "d", ".", 2);
        QTest::newRow("month first") << "M/d/yy" << object("yyyy", "M", "d", "/", 1);
        QTest::newRow("padded parts") << "MM-dd-y" << object("yyyy", "MM", "dd", "-", 1);
        QTest::newRow("year month day") << "yyyy/MM/dd" << object("yyyy", "MM", "dd", "/", 3);
        QTest::newRow("year day month") << "yy.dd.MM" << object("yyyy", "MM", "dd", ".", 4);
        QTest::newRow("day month year, full year") << "dd/MM/yyyy" << object("yyyy", "MM", "dd", "/", 2);
        QTest::newRow("no delimiter") << "ddMMyyyy" << fallback;
        QTest::newRow("four parts") << "dd/MM/yy/yy" << fallback;
        QTest::newRow("two parts") << "MM/yyyy" << fallback;
        QTest::newRow("empty") << "" << fallback;
        QTest::newRow("month name") << "d MMM yyyy" << fallback;
        QTest::newRow("blank after the delimiter") << "yy. M. d." << fallback;
        QTest::newRow("year in the middle") << "MM/yy/dd" << fallback;
        QTest::newRow("day twice") << "dd/dd/yy" << fallback;
        QTest::newRow("three-letter year") << "dd/MM/yyy" << fallback;
    }
    void learnsTheOrderFromAShortFormat()
    {
        QFETCH(QString, shortFormat);
        QFETCH(ZTDateFormatObject, expected);
        const ZTDateFormatObject learnt = ZTDateUtil::dateFormatObjectForFormat(shortFormat);
        QCOMPARE(learnt.yearFormat(), expected.yearFormat());
        QCOMPARE(learnt.monthFormat(), expected.monthFormat());
        QCOMPARE(learnt.dayFormat(), expected.dayFormat());
        QCOMPARE(learnt.delimiter(), expected.delimiter());
        QCOMPARE(learnt.formatOrder(), expected.formatOrder());
        // A second call is answered from the table and must agree.
        QVERIFY(ZTDateUtil::dateFormatObjectForFormat(shortFormat) == learnt);
    }

    void fallbackWritesMonthFirstWithSlashes()
    {
        const ZTDateFormatObject fallback = ZTDateFormatObject::fallback();
        QCOMPARE(fallback.dateFormatWithDateBit(ZTDateBit::FullDate), QStringLiteral("MM/dd/YYYY"));
        QCOMPARE(ZTDateUtil::standardDateFormatter(QLocale::c()).stringFromDate(QDate(2000, 12, 31)),
                 QStringLiteral("12/31/2000"));
    }

    void locales_data()
    {
        QTest::addColumn<QString>("locale");
        QTest::addColumn<QStringList>("patterns");      // bits 0, 1, 2
        QTest::addColumn<QStringList>("printed");       // 2001-03-04 at bits 0, 1, 2
        QTest::addColumn<QStringList>("fieldPatterns"); // untranslated format field text
        QTest::newRow("en_US") << "en_US" << QStringList{"M/d/yyyy", "M/yyyy", "yyyy"}
                               << QStringList{"3/4/2001", "3/2001", "2001"}
                               << QStringList{"M/D/YYYY", "M/YYYY", "YYYY"};
        QTest::newRow("de_DE") << "de_DE" << QStringList{"dd.MM.yyyy", "MM.yyyy", "yyyy"}
                               << QStringList{"04.03.2001", "03.2001", "2001"}
                               << QStringList{"DD.MM.YYYY", "MM.YYYY", "YYYY"};
        QTest::newRow("fr_FR") << "fr_FR" << QStringList{"dd/MM/yyyy", "MM/yyyy", "yyyy"}
                               << QStringList{"04/03/2001", "03/2001", "2001"}
                               << QStringList{"DD/MM/YYYY", "MM/YYYY", "YYYY"};
        QTest::newRow("ja_JP") << "ja_JP" << QStringList{"yyyy/MM/dd", "yyyy/MM", "yyyy"}
                               << QStringList{"2001/03/04", "2001/03", "2001"}
                               << QStringList{"YYYY/MM/DD", "YYYY/MM", "YYYY"};
        QTest::newRow("en_GB") << "en_GB" << QStringList{"dd/MM/yyyy", "MM/yyyy", "yyyy"}
                               << QStringList{"04/03/2001", "03/2001", "2001"}
                               << QStringList{"DD/MM/YYYY", "MM/YYYY", "YYYY"};
    }
    void locales()
    {
        QFETCH(QString, locale);
        QFETCH(QStringList, patterns);
        QFETCH(QStringList, printed);
        QFETCH(QStringList, fieldPatterns);
        const QLocale qlocale(locale);
        const QDate date(2001, 3, 4);
        QCOMPARE(ZTDateUtil::dateFormatString(qlocale), patterns[0]);
        QCOMPARE(ZTDateUtil::standardDateFormatString(qlocale), patterns[0]);
        QCOMPARE(ZTDateUtil::standardDateFormatter(qlocale).dateFormat(), patterns[0]);
        QCOMPARE(ZTDateUtil::standardDateWithYearMonthDayFormatter(qlocale).dateFormat(), patterns[0]);
        QCOMPARE(ZTDateUtil::standardDateWithYearMonthFormatter(qlocale).dateFormat(), patterns[1]);
        QCOMPARE(ZTDateUtil::standardDateWithYearFormatter(qlocale).dateFormat(), patterns[2]);
        for (int bit = 0; bit < 3; ++bit) {
            const ZTDateBit dateBit = ZTDateBit::fromStored(bit);
            const ZTPatternDateFormatter formatter =
                ZTDateUtil::standardDateFormatterForDateBit(dateBit, qlocale);
            QCOMPARE(formatter.dateFormat(), patterns[bit]);
            QCOMPARE(formatter.stringFromDate(date), printed[bit]);
            QCOMPARE(ZTDateUtil::displayString(date, dateBit, qlocale), printed[bit]);
            QCOMPARE(ZTDateUtil::standardDateFormatStringForDateBit(dateBit, qlocale), fieldPatterns[bit]);
            QCOMPARE(formatter.dateFromString(printed[bit]).date(), truncated(date, dateBit));
        }
        // The sheet's token formatter built on the locale's pattern reads the same text.
        QVariant parsed;
        QVERIFY(ZTDateFormatter::fromDatePattern(patterns[0]).getObjectValue(&parsed, printed[0]));
        QCOMPARE(parsed.toDateTime().date(), date);
    }

    void defaultLocaleIsUsedWhenNoneIsGiven()
    {
        const QLocale before;
        QLocale::setDefault(QLocale(QStringLiteral("de_DE")));
        const QString german = ZTDateUtil::displayString(QDate(2001, 3, 4), ZTDateBit::FullDate);
        QLocale::setDefault(QLocale(QStringLiteral("ja_JP")));
        const QString japanese = ZTDateUtil::displayString(QDate(2001, 3, 4), ZTDateBit::FullDate);
        QLocale::setDefault(before);
        QCOMPARE(german, QStringLiteral("04.03.2001"));
        QCOMPARE(japanese, QStringLiteral("2001/03/04"));
    }

    void roundTripsAtEachPrecision_data()
    {
        QTest::addColumn<QString>("locale");
        QTest::addColumn<int>("bit");
        for (const char *locale : {"en_US", "de_DE", "fr_FR", "ja_JP", "en_GB", "C"}) {
            for (int bit = 0; bit < 3; ++bit)
                QTest::addRow("%s bit %d", locale, bit) << QString::fromLatin1(locale) << bit;
        }
    }
    void roundTripsAtEachPrecision()
    {
        QFETCH(QString, locale);
        QFETCH(int, bit);
        const ZTDateBit dateBit = ZTDateBit::fromStored(bit);
        const ZTPatternDateFormatter formatter =
            ZTDateUtil::standardDateFormatterForDateBit(dateBit, QLocale(locale));
        const QDate dates[] = {QDate(2001, 3, 4), QDate(1999, 12, 31),  QDate(2004, 2, 29),
                               QDate(1, 1, 1),    QDate(10000, 10, 10), QDate(2025, 1, 1)};
        for (const QDate &date : dates) {
            const QString text = formatter.stringFromDate(QDateTime(date, QTime(15, 30)));
            const QDateTime parsed = formatter.dateFromString(text);
            QCOMPARE(parsed.date(), truncated(date, dateBit));
            QCOMPARE(parsed.time(), QTime(0, 0));
        }
    }

    void patternFormatterRejectsBadInput_data()
    {
        QTest::addColumn<QString>("pattern");
        QTest::addColumn<QString>("text");
        QTest::newRow("empty") << "dd/MM/yyyy"
                               << "";
        QTest::newRow("letters") << "dd/MM/yyyy"
                                 << "abc";
        QTest::newRow("two numbers for three parts") << "dd/MM/yyyy"
                                                     << "4/3";
        QTest::newRow("day 32") << "dd/MM/yyyy"
                                << "32/3/2001";
        QTest::newRow("day zero") << "dd/MM/yyyy"
                                  << "0/3/2001";
        QTest::newRow("month 13") << "MM/yyyy"
                                  << "13/2001";
        QTest::newRow("month zero") << "MM/yyyy"
                                    << "0/2001";
        QTest::newRow("huge year") << "yyyy"
                                   << "99999999999999999999";
        QTest::newRow("huge month") << "MM/yyyy"
                                    << "4294967297/2001";
        QTest::newRow("pattern without fields") << "--"
                                                << "4/3/2001";
        QTest::newRow("no digits in any script") << "yyyy" << QStringLiteral("二〇〇一");
    }
    void patternFormatterRejectsBadInput()
    {
        QFETCH(QString, pattern);
        QFETCH(QString, text);
        QVERIFY(!ZTPatternDateFormatter(pattern).dateFromString(text).isValid());
    }

    void patternFormatterReads_data()
    {
        QTest::addColumn<QString>("pattern");
        QTest::addColumn<QString>("text");
        QTest::addColumn<QDate>("expected");
        QTest::newRow("other separators") << "dd.MM.yyyy"
                                          << " 4 / 3 - 2001 " << QDate(2001, 3, 4);
        QTest::newRow("non-ascii digits")
            << "yyyy/MM/dd" << QStringLiteral("٢٠٠١/٠٣/٠٤") << QDate(2001, 3, 4);
        QTest::newRow("year and month") << "MM.yyyy"
                                        << "03.2001" << QDate(2001, 3, 1);
        QTest::newRow("year only") << "yyyy"
                                   << "1066" << QDate(1066, 1, 1);
        QTest::newRow("fallback year symbol") << "MM/dd/YYYY"
                                              << "12/31/2000" << QDate(2000, 12, 31);
        QTest::newRow("day past month end runs on") << "dd/MM/yyyy"
                                                    << "31/02/2001" << QDate(2001, 3, 3);
        QTest::newRow("extra numbers ignored") << "yyyy"
                                               << "2001 04 05" << QDate(2001, 1, 1);
    }
    void patternFormatterReads()
    {
        QFETCH(QString, pattern);
        QFETCH(QString, text);
        QFETCH(QDate, expected);
        QCOMPARE(ZTPatternDateFormatter(pattern).dateFromString(text).date(), expected);
    }

    void twoDigitYearPatternPrintsAndWindows()
    {
        const ZTPatternDateFormatter formatter(QStringLiteral("d.M.yy"));
        QCOMPARE(formatter.stringFromDate(QDate(1987, 6, 5)), QStringLiteral("5.6.87"));
        const int thisYear = QDate::currentDate().year();
        const int nextYear =
            formatter
                .dateFromString(QStringLiteral("1.1.%1").arg((thisYear + 1) % 100, 2, 10, QLatin1Char('0')))
                .date()
                .year();
        const int farYear =
            formatter
                .dateFromString(QStringLiteral("1.1.%1").arg((thisYear + 30) % 100, 2, 10, QLatin1Char('0')))
                .date()
                .year();
        QCOMPARE(nextYear, thisYear + 1);
        QCOMPARE(farYear, thisYear + 30 - 100);
    }

    void displayStrings()
    {
        const QLocale us(QStringLiteral("en_US"));
        QVERIFY(ZTDateUtil::displayString(QDateTime(), ZTDateBit::FullDate, us).isEmpty());
        QVERIFY(ZTDateUtil::displayString(QDate(), ZTDateBit::Year, us).isEmpty());
        const QDateTime date(QDate(2010, 11, 12), QTime(9, 0));
        QCOMPARE(ZTDateUtil::displayString(date, ZTDateBit::fromStored(5), us), QStringLiteral("2010"));
        QCOMPARE(ZTDateUtil::dateUsedString(date, ZTDateBit::YearMonth, false, us),
                 QStringLiteral("11/2010"));
        QCOMPARE(ZTDateUtil::dateUsedString(QDateTime(), ZTDateBit::FullDate, true, us),
                 QStringLiteral("Yes"));
        QCOMPARE(ZTDateUtil::dateUsedString(QDateTime(), ZTDateBit::FullDate, false, us),
                 QStringLiteral("No"));
        MarkingTranslator translator;
        QCoreApplication::installTranslator(&translator);
        const QString yes = ZTDateUtil::dateUsedString(QDateTime(), ZTDateBit::FullDate, true, us);
        QCoreApplication::removeTranslator(&translator);
        QCOMPARE(yes, QStringLiteral("<Yes>"));
    }

    void bitFlagKeys_data()
    {
        QTest::addColumn<QString>("key");
        QTest::addColumn<QString>("flagKey");
        QTest::newRow("dateUsed") << "dateUsed"
                                  << "dateUsedBitFlag";
        QTest::newRow("datePublished") << "datePublished"
                                       << "datePublishedBitFlag";
        QTest::newRow("originalDatePublished") << "originalDatePublished"
                                               << "originalDatePublishedBitFlag";
        QTest::newRow("dateObtained") << "dateObtained"
                                      << "dateObtainedBitFlag";
        QTest::newRow("dateAdded") << "dateAdded"
                                   << "";
        QTest::newRow("dateDue") << "dateDue"
                                 << "";
        QTest::newRow("title") << "title"
                               << "";
    }
    void bitFlagKeys()
    {
        QFETCH(QString, key);
        QFETCH(QString, flagKey);
        QCOMPARE(ZTDateUtil::bitFlagKeyForDateKey(key), flagKey);
    }
};

ZT_TEST_MAIN(TestPartialDates)
#include "tst_partialdates.moc"
