#include "model/ZTDateFormatter.h"
#include "support/ZTTestMain.h"

#include <QtTest>

// The sheets' token formatter: printing, the digit-run parser and its checks.
class TestDateFormatter : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void printsTokens_data()
    {
        QTest::addColumn<QString>("format");
        QTest::addColumn<QDate>("date");
        QTest::addColumn<QString>("expected");
        const QDate march4(2001, 3, 4);
        QTest::newRow("padded day and month") << "%d/%m/%Y" << march4 << "04/03/2001";
        QTest::newRow("unpadded day and month") << "%e.%1m.%Y" << march4 << "4.3.2001";
        QTest::newRow("two digits stay two digits") << "%e.%1m.%Y" << QDate(2001, 12, 25) << "25.12.2001";
        QTest::newRow("two-digit year") << "%d/%m/%y" << QDate(2005, 1, 9) << "09/01/05";
        QTest::newRow("year digits after the second") << "%y" << QDate(12345, 6, 7) << "345";
        QTest::newRow("short year has no third digit") << "%y" << QDate(5, 6, 7) << "00";
        QTest::newRow("year before the era prints as the era year") << "%Y" << QDate(-44, 3, 15) << "44";
        QTest::newRow("literal text is kept") << "Day %e of %1m, %Y!" << march4 << "Day 4 of 3, 2001!";
        QTest::newRow("repeated token") << "%Y-%Y" << march4 << "2001-2001";
        QTest::newRow("no tokens") << "plain" << march4 << "plain";
    }
    void printsTokens()
    {
        QFETCH(QString, format);
        QFETCH(QDate, date);
        QFETCH(QString, expected);
        const ZTDateFormatter formatter(format);
        QCOMPARE(formatter.stringForObjectValue(date), expected);
        QCOMPARE(formatter.stringForObjectValue(QDateTime(date, QTime(0, 0))), expected);
    }

    void printsNothingForNonDates()
    {
        const ZTDateFormatter formatter(QStringLiteral("%d/%m/%Y"));
        QVERIFY(formatter.stringForObjectValue(QVariant()).isNull());
        QVERIFY(formatter.stringForObjectValue(QStringLiteral("2001-03-04")).isNull());
        QVERIFY(formatter.stringForObjectValue(QDate()).isNull());
    }

    void parses_data()
    {
        QTest::addColumn<QString>("format");
        QTest::addColumn<QString>("text");
        QTest::addColumn<QDate>("expected"); // null: parsing fails

        const QString dmy = QStringLiteral("%d/%m/%Y");
        const QDate march4(2001, 3, 4);
        QTest::newRow("day month year") << dmy << "04/03/2001" << march4;
        QTest::newRow("unpadded input") << dmy << "4/3/2001" << march4;
        QTest::newRow("any separators") << dmy << "4-3.2001" << march4;
        QTest::newRow("surrounding blanks") << dmy << "  4 3 2001\n" << march4;
        QTest::newRow("separator runs collapse") << dmy << "4 // 3 -- 2001" << march4;
        QTest::newRow("words between numbers") << dmy << "the 4th of 3, 2001" << march4;
        QTest::newRow("only three runs count") << dmy << "4/3/2001/99" << march4;
        QTest::newRow("month first") << "%m/%d/%Y"
                                     << "03/04/2001" << march4;
        QTest::newRow("year first") << "%Y-%m-%d"
                                    << "2001-03-04" << march4;
        QTest::newRow("year day month") << "%Y %d %m"
                                        << "2001 04 03" << march4;
        QTest::newRow("unpadded tokens") << "%e.%1m.%Y"
                                         << "4.3.2001" << march4;
        QTest::newRow("two-digit year is 1900s") << "%d/%m/%y"
                                                 << "04/03/05" << QDate(1905, 3, 4);
        QTest::newRow("two-digit token adds 1900 to any year") << "%d/%m/%y"
                                                               << "04/03/2005" << QDate(3905, 3, 4);
        QTest::newRow("full year as typed") << dmy << "04/03/05" << QDate(5, 3, 4);
        QTest::newRow("year zero is the year before 1") << dmy << "01/01/0" << QDate(-1, 1, 1);
        QTest::newRow("day past month end runs on") << dmy << "31/02/2001" << QDate(2001, 3, 3);
        QTest::newRow("leap day") << dmy << "29/02/2004" << QDate(2004, 2, 29);
        QTest::newRow("day and month at their limits") << dmy << "31/12/1999" << QDate(1999, 12, 31);
        QTest::newRow("arabic-indic digits") << dmy << QStringLiteral("٠٤/٠٣/٢٠٠١") << march4;
        QTest::newRow("fullwidth digits") << dmy << QStringLiteral("０４/０３/２００１") << march4;
        QTest::newRow("leading zeros") << dmy << "0004/0003/0002001" << march4;

        QTest::newRow("two numbers only") << dmy << "2/3" << QDate();
        QTest::newRow("two numbers and a separator") << dmy << "2/3/" << QDate();
        QTest::newRow("letters") << dmy << "abc" << QDate();
        QTest::newRow("letters between two numbers") << dmy << "4 March 2001" << QDate();
        QTest::newRow("day zero") << dmy << "0/3/2001" << QDate();
        QTest::newRow("day 32") << dmy << "32/3/2001" << QDate();
        QTest::newRow("month zero") << dmy << "4/0/2001" << QDate();
        QTest::newRow("month 13") << dmy << "4/13/2001" << QDate();
        QTest::newRow("huge day") << dmy << "99999999999999999999999/3/2001" << QDate();
        QTest::newRow("day overflowing an int to 1") << dmy << "4294967297/3/2001" << QDate();
        QTest::newRow("huge month") << dmy << "4/4294967299/2001" << QDate();
        QTest::newRow("huge year") << dmy << "4/3/99999999999999999999" << QDate();
        QTest::newRow("huge two-digit year") << "%d/%m/%y"
                                             << "4/3/99999999999999999999" << QDate();
        QTest::newRow("minus sign is a separator") << dmy << "-4/-3/-2001" << march4;
        QTest::newRow("format without a day") << "%m/%Y"
                                              << "3/2001/4" << QDate();
        QTest::newRow("format without a month") << "%d/%Y"
                                                << "4/2001/3" << QDate();
        QTest::newRow("format without a year") << "%d/%m"
                                               << "4/3/2001" << QDate();
        QTest::newRow("empty format") << ""
                                      << "4/3/2001" << QDate();
    }
    void parses()
    {
        QFETCH(QString, format);
        QFETCH(QString, text);
        QFETCH(QDate, expected);
        const ZTDateFormatter formatter(format);
        const QVariant untouched = QStringLiteral("untouched");
        QVariant value = untouched;
        QString error;
        const bool ok = formatter.getObjectValue(&value, text, &error);
        QCOMPARE(ok, expected.isValid());
        if (ok) {
            QCOMPARE(value.typeId(), QMetaType::QDateTime);
            const QDateTime parsed = value.toDateTime();
            QCOMPARE(parsed.date(), expected);
            QCOMPARE(parsed.time(), QTime(0, 0));
            QCOMPARE(parsed.timeSpec(), Qt::LocalTime);
        } else {
            QCOMPARE(value, untouched);
            QVERIFY(!error.isEmpty());
        }
    }

    void blankTextSucceedsAndLeavesTheValue_data()
    {
        QTest::addColumn<QString>("text");
        QTest::newRow("empty") << QString(QLatin1String(""));
        QTest::newRow("spaces") << QStringLiteral("   ");
        QTest::newRow("tabs and newlines") << QStringLiteral("\t\n \r");
    }
    void blankTextSucceedsAndLeavesTheValue()
    {
        QFETCH(QString, text);
        const QVariant before = QDateTime(QDate(1999, 1, 2), QTime(0, 0));
        QVariant value = before;
        QVERIFY(ZTDateFormatter(QStringLiteral("%d/%m/%Y")).getObjectValue(&value, text));
        QCOMPARE(value, before);
    }

    void nullStringFails()
    {
        QVariant value;
        QString error;
        QVERIFY(!ZTDateFormatter(QStringLiteral("%d/%m/%Y")).getObjectValue(&value, QString(), &error));
        QVERIFY(!value.isValid());
        QVERIFY(!error.isEmpty());
    }

    // Typed text is anything at all: random characters from digits of several
    // scripts, separators, letters and surrogates must never crash the parser,
    // and whatever it accepts is a real date at midnight.
    void randomTextNeverCrashes()
    {
        const QString alphabet = QStringLiteral("0123456789/.- ax%\t٣٤０９") + QChar(0xD800) + QChar(0xDC00);
        QRandomGenerator random(20011);
        const ZTDateFormatter formatter(QStringLiteral("%d/%m/%y"));
        int accepted = 0;
        for (int i = 0; i < 20000; ++i) {
            QString text;
            const int length = random.bounded(40);
            for (int j = 0; j < length; ++j)
                text += alphabet.at(random.bounded(int(alphabet.size())));
            QVariant value;
            if (formatter.getObjectValue(&value, text) && value.isValid()) {
                ++accepted;
                QVERIFY(value.toDateTime().isValid());
                QCOMPARE(value.toDateTime().time(), QTime(0, 0));
            }
        }
        QVERIFY(accepted > 0);
    }

    void roundTripsEveryDayOfALeapYear_data()
    {
        QTest::addColumn<QString>("format");
        for (const char *format : {"%d/%m/%Y", "%e.%1m.%Y", "%Y-%m-%d", "%m/%d/%Y", "%Y %d %1m"})
            QTest::newRow(format) << QString::fromLatin1(format);
    }
    void roundTripsEveryDayOfALeapYear()
    {
        QFETCH(QString, format);
        const ZTDateFormatter formatter(format);
        for (QDate date(2004, 1, 1); date.year() == 2004; date = date.addDays(1)) {
            QVariant value;
            QVERIFY(formatter.getObjectValue(&value, formatter.stringForObjectValue(date)));
            QCOMPARE(value.toDateTime().date(), date);
        }
    }

    // The two-digit year prints the last two digits but reads them as the 1900s.
    void twoDigitYearRoundTripsOnlyInThe1900s()
    {
        const ZTDateFormatter formatter(QStringLiteral("%d/%m/%y"));
        QVariant value;
        QVERIFY(formatter.getObjectValue(&value, formatter.stringForObjectValue(QDate(1977, 5, 25))));
        QCOMPARE(value.toDateTime().date(), QDate(1977, 5, 25));
        QVERIFY(formatter.getObjectValue(&value, formatter.stringForObjectValue(QDate(2012, 5, 25))));
        QCOMPARE(value.toDateTime().date(), QDate(1912, 5, 25));
    }

    void formatFromDatePattern_data()
    {
        QTest::addColumn<QString>("pattern");
        QTest::addColumn<QString>("format");
        QTest::newRow("padded") << "dd.MM.yyyy"
                                << "%d.%m.%Y";
        QTest::newRow("unpadded month first") << "M/d/yyyy"
                                              << "%1m/%e/%Y";
        QTest::newRow("year first") << "yyyy/MM/dd"
                                    << "%Y/%m/%d";
        QTest::newRow("fallback year symbol") << "MM/dd/YYYY"
                                              << "%m/%d/%Y";
        QTest::newRow("two-digit year") << "d-M-yy"
                                        << "%e-%1m-%y";
        QTest::newRow("year alone") << "yyyy"
                                    << "%Y";
        QTest::newRow("empty") << ""
                               << "";
    }
    void formatFromDatePattern()
    {
        QFETCH(QString, pattern);
        QFETCH(QString, format);
        QCOMPARE(ZTDateFormatter::fromDatePattern(pattern).dateFormat(), format);
    }
};

ZT_TEST_MAIN(TestDateFormatter)
#include "tst_dateformatter.moc"
