// How one rule is judged: the three comparators and the qualifier forms.
#include "ListsTestLibrary.h"

#include "lists/ZTSmartList.h"
#include "support/ZTTestMain.h"

#include <QtTest>

namespace Op = ZTQualifierOperator;

namespace {
QVariantMap rule(const QString &type, const QString &key, const QString &op, const QVariantMap &rhs = {},
                 bool toMany = false)
{
    QVariantMap q{{QStringLiteral("type"), type},
                  {QStringLiteral("lhs"), key},
                  {QStringLiteral("lhsKey"), key},
                  {QStringLiteral("operator"), op},
                  {QStringLiteral("toMany"), toMany ? 1 : 0}};
    if (!rhs.isEmpty())
        q.insert(QStringLiteral("rhs"), rhs);
    return q;
}
QVariantMap single(const QString &value)
{
    return {{QStringLiteral("value"), value}};
}
QVariantMap range(const QString &from, const QString &to)
{
    return {{QStringLiteral("fromValue"), from}, {QStringLiteral("toValue"), to}};
}
QVariantMap period(const QString &number, const QString &unit)
{
    return {{QStringLiteral("numberValue"), number}, {QStringLiteral("timePeriodValue"), unit}};
}
QDateTime day(int y, int m, int d)
{
    return QDateTime(QDate(y, m, d), QTime(0, 0));
}
} // namespace

class TestSmartListRules : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() { m_library = std::make_unique<ListsTestLibrary>(); }
    void stringComparator_data();
    void stringComparator();
    void numberComparator_data();
    void numberComparator();
    void dateComparator_data();
    void dateComparator();
    void leadingNumbers_data();
    void leadingNumbers();
    void qualifierOnItem_data();
    void qualifierOnItem();
    void inTheLast_data();
    void inTheLast();
    void combiningQualifiers_data();
    void combiningQualifiers();

private:
    // One library for every row: each row adds its own item.
    std::unique_ptr<ListsTestLibrary> m_library;
};

void TestSmartListRules::stringComparator_data()
{
    QTest::addColumn<QString>("lhs");
    QTest::addColumn<QString>("op");
    QTest::addColumn<QString>("rhs");
    QTest::addColumn<bool>("expected");
    QTest::newRow("contains, any case") << "The Hobbit"
                                        << "contains"
                                        << "HOB" << true;
    QTest::newRow("contains, absent") << "The Hobbit"
                                      << "contains"
                                      << "ring" << false;
    QTest::newRow("contains empty finds nothing") << "The Hobbit"
                                                  << "contains"
                                                  << "" << false;
    QTest::newRow("contains empty in empty") << ""
                                             << "contains"
                                             << "" << false;
    QTest::newRow("does not contain empty always") << ""
                                                   << "does not contain"
                                                   << "" << true;
    QTest::newRow("does not contain") << "The Hobbit"
                                      << "does not contain"
                                      << "ring" << true;
    QTest::newRow("does not contain, present") << "The Hobbit"
                                               << "does not contain"
                                               << "bit" << false;
    QTest::newRow("is, case folded") << "Ann Smith"
                                     << "is"
                                     << "ann SMITH" << true;
    QTest::newRow("is, different") << "Ann Smith"
                                   << "is"
                                   << "Ann Smyth" << false;
    QTest::newRow("is keeps accents") << "Café"
                                      << "is"
                                      << "Cafe" << false;
    QTest::newRow("contains keeps accents") << "Café noir"
                                            << "contains"
                                            << "cafe" << false;
    QTest::newRow("contains folds accented case") << "CAFÉ NOIR"
                                                  << "contains"
                                                  << "café" << true;
    QTest::newRow("is not") << "Ann"
                            << "is not"
                            << "Bob" << true;
    QTest::newRow("is not, same but case") << "Ann"
                                           << "is not"
                                           << "ANN" << false;
    QTest::newRow("null is empty") << QString() << "is"
                                   << "" << true;
    QTest::newRow("null is not text") << QString() << "is not"
                                      << "x" << true;
    QTest::newRow("starts with") << "Hobbit"
                                 << "starts with"
                                 << "hOB" << true;
    QTest::newRow("starts with, middle") << "Hobbit"
                                         << "starts with"
                                         << "bb" << false;
    QTest::newRow("ends with") << "Hobbit"
                               << "ends with"
                               << "BIT" << true;
    QTest::newRow("ends with, longer") << "bit"
                                       << "ends with"
                                       << "hobbit" << false;
    QTest::newRow("starts with empty") << "Hobbit"
                                       << "starts with"
                                       << "" << false;
    QTest::newRow("unknown operator") << "x"
                                      << "resembles"
                                      << "x" << false;
    QTest::newRow("evaluator-only operator on text") << "b"
                                                     << "is greater than"
                                                     << "a" << false;
}

void TestSmartListRules::stringComparator()
{
    QFETCH(QString, lhs);
    QFETCH(QString, op);
    QFETCH(QString, rhs);
    QFETCH(bool, expected);
    QCOMPARE(ZTSmartList::evaluateLhsString(lhs, op, rhs), expected);
}

void TestSmartListRules::numberComparator_data()
{
    QTest::addColumn<double>("lhs");
    QTest::addColumn<QString>("op");
    QTest::addColumn<double>("rhs");
    QTest::addColumn<bool>("expected");
    QTest::newRow("is") << 3.0 << "is" << 3.0 << true;
    QTest::newRow("is, fraction differs") << 3.5 << "is" << 3.0 << false;
    QTest::newRow("is not") << 3.0 << "is not" << 4.0 << true;
    QTest::newRow("greater") << 4.0 << "is greater than" << 3.0 << true;
    QTest::newRow("greater, equal") << 3.0 << "is greater than" << 3.0 << false;
    QTest::newRow("less") << -1.0 << "is less than" << 0.0 << true;
    QTest::newRow(">= equal") << 3.0 << "is greater than or equal to" << 3.0 << true;
    QTest::newRow(">= below") << 2.99 << "is greater than or equal to" << 3.0 << false;
    QTest::newRow("<= equal") << 3.0 << "is less than or equal to" << 3.0 << true;
    QTest::newRow("<= above") << 3.01 << "is less than or equal to" << 3.0 << false;
    QTest::newRow("range is no comparator") << 3.0 << "is in the range" << 3.0 << false;
    QTest::newRow("unknown") << 3.0 << "" << 3.0 << false;
}

void TestSmartListRules::numberComparator()
{
    QFETCH(double, lhs);
    QFETCH(QString, op);
    QFETCH(double, rhs);
    QFETCH(bool, expected);
    QCOMPARE(ZTSmartList::evaluateLhsNumber(lhs, op, rhs), expected);
}

void TestSmartListRules::dateComparator_data()
{
    QTest::addColumn<QDateTime>("lhs");
    QTest::addColumn<QString>("op");
    QTest::addColumn<QDateTime>("rhs");
    QTest::addColumn<int>("bit");
    QTest::addColumn<bool>("expected");
    const QDateTime march15 = localDay(1999, 3, 15, 18, 30);
    const QDateTime march31 = day(1999, 3, 31);
    // Full date: the day decides, the time of day does not.
    QTest::newRow("day: is, other time") << march15 << "is" << day(1999, 3, 15) << 0 << true;
    QTest::newRow("day: is, next day") << march15 << "is" << day(1999, 3, 16) << 0 << false;
    QTest::newRow("day: is not") << march15 << "is not" << day(1999, 3, 16) << 0 << true;
    QTest::newRow("day: after, same day later time")
        << march15 << "is after" << day(1999, 3, 15) << 0 << false;
    QTest::newRow("day: after") << march15 << "is after" << day(1999, 3, 14) << 0 << true;
    QTest::newRow("day: before") << march15 << "is before" << march31 << 0 << true;
    QTest::newRow("day: >= same day")
        << march15 << "is greater than or equal to" << day(1999, 3, 15) << 0 << true;
    QTest::newRow("day: >= earlier") << march15 << "is greater than or equal to" << march31 << 0 << false;
    QTest::newRow("day: <= same day")
        << march15 << "is less than or equal to" << day(1999, 3, 15) << 0 << true;
    QTest::newRow("day: <= later") << march31 << "is less than or equal to" << march15 << 0 << false;
    // Month and year known: days are ignored, months compared within a year.
    QTest::newRow("month: >= end of month")
        << march15 << "is greater than or equal to" << march31 << 1 << true;
    QTest::newRow("month: is") << march15 << "is" << march31 << 1 << true;
    QTest::newRow("month: is, other year") << march15 << "is" << day(2000, 3, 1) << 1 << false;
    QTest::newRow("month: after, same month") << march31 << "is after" << march15 << 1 << false;
    QTest::newRow("month: after, later month") << day(1999, 4, 1) << "is after" << march31 << 1 << true;
    QTest::newRow("month: after, later year earlier month")
        << day(2000, 1, 1) << "is after" << march31 << 1 << true;
    QTest::newRow("month: before, earlier year later month")
        << day(1998, 12, 1) << "is before" << march31 << 1 << true;
    QTest::newRow("month: <= same month") << march31 << "is less than or equal to" << march15 << 1 << true;
    QTest::newRow("month: is not") << march15 << "is not" << march31 << 1 << false;
    // Year only.
    QTest::newRow("year: is") << day(1999, 1, 1) << "is" << day(1999, 6, 15) << 2 << true;
    QTest::newRow("year: after, same year")
        << day(1999, 12, 31) << "is after" << day(1999, 1, 1) << 2 << false;
    QTest::newRow("year: after") << day(2000, 1, 1) << "is after" << day(1999, 12, 31) << 2 << true;
    QTest::newRow("year: before") << day(1998, 12, 31) << "is before" << day(1999, 1, 1) << 2 << true;
    QTest::newRow("year: >=") << day(1999, 1, 1) << "is greater than or equal to" << day(1999, 12, 31) << 2
                              << true;
    QTest::newRow("year: <=") << day(2000, 1, 1) << "is less than or equal to" << day(1999, 12, 31) << 2
                              << false;
    // A stored bit outside 0..2 is brought into range.
    QTest::newRow("bit above 2 is year") << day(1999, 1, 1) << "is" << day(1999, 6, 15) << 7 << true;
    QTest::newRow("negative bit is full date") << day(1999, 1, 1) << "is" << day(1999, 6, 15) << -3 << false;
    // Missing dates.
    QTest::newRow("null left is not") << QDateTime() << "is not" << march15 << 0 << true;
    QTest::newRow("null left is") << QDateTime() << "is" << march15 << 0 << false;
    QTest::newRow("null left after") << QDateTime() << "is after" << march15 << 0 << false;
    QTest::newRow("null left before") << QDateTime() << "is before" << march15 << 0 << false;
    QTest::newRow("null left <=") << QDateTime() << "is less than or equal to" << march15 << 0 << false;
    QTest::newRow("null right is") << march15 << "is" << QDateTime() << 0 << false;
    QTest::newRow("null right is not") << march15 << "is not" << QDateTime() << 0 << true;
    QTest::newRow("no operator") << march15 << "" << march15 << 0 << false;
    QTest::newRow("unknown operator") << march15 << "contains" << march15 << 0 << false;
}

void TestSmartListRules::dateComparator()
{
    QFETCH(QDateTime, lhs);
    QFETCH(QString, op);
    QFETCH(QDateTime, rhs);
    QFETCH(int, bit);
    QFETCH(bool, expected);
    QCOMPARE(ZTSmartList::evaluateLhsDate(lhs, op, rhs, bit), expected);
}

void TestSmartListRules::leadingNumbers_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<qlonglong>("integer");
    QTest::addColumn<double>("real");
    QTest::newRow("plain") << "12" << 12LL << 12.0;
    QTest::newRow("spaces and unit") << "  12 pages" << 12LL << 12.0;
    QTest::newRow("fraction") << "4.75" << 4LL << 4.75;
    QTest::newRow("negative") << "-3.5" << -3LL << -3.5;
    QTest::newRow("no number") << "abc" << 0LL << 0.0;
    QTest::newRow("empty") << "" << 0LL << 0.0;
    QTest::newRow("lone dot") << "." << 0LL << 0.0;
    QTest::newRow("exponent") << "1e3" << 1LL << 1000.0;
    QTest::newRow("dangling exponent") << "2e" << 2LL << 2.0;
    QTest::newRow("overflow saturates")
        << "99999999999999999999999" << std::numeric_limits<qlonglong>::max() << 1e23;
}

void TestSmartListRules::leadingNumbers()
{
    QFETCH(QString, text);
    QFETCH(qlonglong, integer);
    QFETCH(double, real);
    QCOMPARE(ZTSmartList::integerValue(text), integer);
    QCOMPARE(ZTSmartList::doubleValue(text), real);
}

void TestSmartListRules::qualifierOnItem_data()
{
    QTest::addColumn<QVariantMap>("item");
    QTest::addColumn<QVariantMap>("qualifier");
    QTest::addColumn<bool>("expected");
    const QVariantMap annAndBob{{"title", "Two Authors"}, {"authors", QStringList{"Ann", "Bob"}}};
    const QVariantMap nobody{{"title", "Anonymous"}};
    QTest::newRow("to-many does not contain: all must pass")
        << annAndBob << rule("text", "authors", "does not contain", single("bob"), true) << false;
    QTest::newRow("to-many does not contain: none present")
        << annAndBob << rule("text", "authors", "does not contain", single("carl"), true) << true;
    QTest::newRow("to-many does not contain: no authors")
        << nobody << rule("text", "authors", "does not contain", single("bob"), true) << true;
    QTest::newRow("to-many contains: no authors")
        << nobody << rule("text", "authors", "contains", single("bob"), true) << false;
    QTest::newRow("to-many is: one matches")
        << annAndBob << rule("text", "authors", "is", single("ann"), true) << true;
    QTest::newRow("to-many is not: one matches")
        << annAndBob << rule("text", "authors", "is not", single("ann"), true) << false;
    QTest::newRow("to-many is not: none matches")
        << annAndBob << rule("text", "authors", "is not", single("Carl"), true) << true;
    QTest::newRow("to-many is not: no authors")
        << nobody << rule("text", "authors", "is not", single("Carl"), true) << true;
    QTest::newRow("to-many starts with")
        << annAndBob << rule("text", "authors", "starts with", single("bo"), true) << true;
    QTest::newRow("keywords contains") << QVariantMap{{"keywords", QStringList{"fantasy", "dragons"}}}
                                       << rule("text", "keywords", "contains", single("DRAG"), true) << true;
    QTest::newRow("text contains empty")
        << annAndBob << rule("text", "title", "contains", single("")) << false;
    QTest::newRow("text does not contain empty")
        << annAndBob << rule("text", "title", "does not contain", single("")) << true;
    QTest::newRow("text without rhs is not") << annAndBob << rule("text", "title", "is not") << true;
    QTest::newRow("missing text is empty") << nobody << rule("text", "series", "is", single("")) << true;
    QTest::newRow("no price is less than 5")
        << nobody << rule("float", "price", "is less than", single("5")) << true;
    QTest::newRow("no price is 0") << nobody << rule("float", "price", "is", single("0")) << true;
    QTest::newRow("price greater") << QVariantMap{{"price", 7.5}}
                                   << rule("float", "price", "is greater than", single("7.49")) << true;
    QTest::newRow("price range inclusive")
        << QVariantMap{{"price", 7.5}} << rule("float", "price", "is in the range", range("7.5", "7.5"))
        << true;
    QTest::newRow("reversed range matches nothing")
        << QVariantMap{{"price", 3.0}} << rule("float", "price", "is in the range", range("5", "1")) << false;
    QTest::newRow("float reads fraction")
        << QVariantMap{{"price", 4.25}} << rule("float", "price", "is", single("4.25")) << true;
    QTest::newRow("integer reads leading digits")
        << QVariantMap{{"pages", 12}} << rule("integer", "pages", "is", single("12 pages")) << true;
    QTest::newRow("integer drops fraction")
        << QVariantMap{{"pages", 12}} << rule("integer", "pages", "is greater than", single("11.9")) << true;
    QTest::newRow("malformed rhs reads 0")
        << QVariantMap{{"rating", 0}} << rule("rating", "rating", "is", single("lots")) << true;
    QTest::newRow("rating range") << QVariantMap{{"rating", 3}}
                                  << rule("rating", "rating", "is in the range", range("2", "4")) << true;
    QTest::newRow("rating range missing to")
        << QVariantMap{{"rating", 3}} << rule("rating", "rating", "is in the range", single("2")) << false;
    QTest::newRow("boolean set") << QVariantMap{{"signedFlag", true}}
                                 << rule("boolean", "signedFlag", "is set") << true;
    QTest::newRow("boolean not set, false")
        << QVariantMap{{"signedFlag", false}} << rule("boolean", "signedFlag", "is not set") << true;
    QTest::newRow("boolean not set, missing lending")
        << nobody << rule("boolean", "lentOutFlag", "is not set") << true;
    QTest::newRow("cover flag without cover")
        << nobody << rule("boolean", "hasCoverImageFlag", "is set") << false;
    const QVariantMap year1999{{"datePublished", day(1999, 1, 1)}, {"datePublishedBitFlag", 2}};
    QTest::newRow("year-only date is mid-year day")
        << year1999 << rule("date", "datePublished", "is", single("06-15-1999")) << true;
    QTest::newRow("year-only date is after same year")
        << year1999 << rule("date", "datePublished", "is after", single("01-01-1999")) << false;
    const QVariantMap march1999{{"datePublished", day(1999, 3, 1)}, {"datePublishedBitFlag", 1}};
    QTest::newRow("month date in range from month end")
        << march1999 << rule("date", "datePublished", "is in the range", range("03-31-1999", "12-31-1999"))
        << true;
    QTest::newRow("full date before range")
        << QVariantMap{{"datePublished", day(1999, 3, 1)}}
        << rule("date", "datePublished", "is in the range", range("03-31-1999", "12-31-1999")) << false;
    QTest::newRow("date range without from")
        << march1999 << rule("date", "datePublished", "is in the range", range("", "12-31-1999")) << false;
    QTest::newRow("unreadable rhs date")
        << march1999 << rule("date", "datePublished", "is", single("soon")) << false;
    QTest::newRow("unreadable rhs date, is not")
        << march1999 << rule("date", "datePublished", "is not", single("soon")) << true;
    QTest::newRow("null date is not")
        << nobody << rule("date", "datePublished", "is not", single("01-01-2000")) << true;
    QTest::newRow("null date is") << nobody << rule("date", "datePublished", "is", single("01-01-2000"))
                                  << false;
    QTest::newRow("null date after") << nobody
                                     << rule("date", "datePublished", "is after", single("01-01-2000"))
                                     << false;
    QTest::newRow("null date before")
        << nobody << rule("date", "datePublished", "is before", single("01-01-2000")) << false;
    QTest::newRow("null date in range")
        << nobody << rule("date", "datePublished", "is in the range", range("01-01-1900", "01-01-2100"))
        << false;
    QTest::newRow("null date in the last")
        << nobody << rule("date", "datePublished", "is in the last", period("5", "years")) << false;
    QTest::newRow("null date not in the last")
        << nobody << rule("date", "datePublished", "is not in the last", period("5", "years")) << true;
}

void TestSmartListRules::qualifierOnItem()
{
    QFETCH(QVariantMap, item);
    QFETCH(QVariantMap, qualifier);
    QFETCH(bool, expected);
    ZTItem *added = m_library->add(item);
    QVERIFY(added);
    ZTSmartList *list =
        ZTSmartList::createInManagedObjectContext(m_library->document->managedObjectContext(), 0);
    list->setQualifiers({qualifier});
    QCOMPARE(list->itemBelongsOnList(*added), expected);
    // The same single rule in an any-of list gives the same answer.
    list->setAndOrFlag(1);
    QCOMPARE(list->itemBelongsOnList(*added), expected);
}

void TestSmartListRules::inTheLast_data()
{
    QTest::addColumn<QDateTime>("now");
    QTest::addColumn<QDateTime>("value");
    QTest::addColumn<int>("bit");
    QTest::addColumn<QString>("number");
    QTest::addColumn<QString>("unit");
    QTest::addColumn<bool>("inside");
    const QDateTime now = localDay(2024, 3, 10, 12, 0);
    QTest::newRow("3 of 5 days") << now << day(2024, 3, 7) << 0 << "5"
                                 << "days" << true;
    QTest::newRow("cut-off day counts") << now << day(2024, 3, 5) << 0 << "5"
                                        << "days" << true;
    QTest::newRow("day before cut-off") << now << day(2024, 3, 4) << 0 << "5"
                                        << "days" << false;
    QTest::newRow("today") << now << localDay(2024, 3, 10, 23, 0) << 0 << "5"
                           << "days" << true;
    QTest::newRow("tomorrow is outside") << now << day(2024, 3, 11) << 0 << "5"
                                         << "days" << false;
    QTest::newRow("future is outside") << now << day(2024, 3, 20) << 0 << "5"
                                       << "days" << false;
    QTest::newRow("two weeks") << now << day(2024, 2, 25) << 0 << "2"
                               << "weeks" << true;
    QTest::newRow("two weeks and a day") << now << day(2024, 2, 24) << 0 << "2"
                                         << "weeks" << false;
    QTest::newRow("a month") << now << day(2024, 2, 10) << 0 << "1"
                             << "months" << true;
    QTest::newRow("a month and a day") << now << day(2024, 2, 9) << 0 << "1"
                                       << "months" << false;
    QTest::newRow("a year") << now << day(2023, 3, 10) << 0 << "1"
                            << "years" << true;
    QTest::newRow("a year and a day") << now << day(2023, 3, 9) << 0 << "1"
                                      << "years" << false;
    QTest::newRow("unknown unit counts years") << now << day(2023, 3, 10) << 0 << "1"
                                               << "fortnights" << true;
    QTest::newRow("month of a year-month date") << now << day(2024, 2, 1) << 1 << "1"
                                                << "months" << true;
    QTest::newRow("year-only date, last month") << localDay(2024, 1, 15) << day(2023, 6, 1) << 2 << "1"
                                                << "months" << true;
    QTest::newRow("zero days is today") << now << day(2024, 3, 10) << 0 << "0"
                                        << "days" << true;
    QTest::newRow("zero days, yesterday") << now << day(2024, 3, 9) << 0 << "0"
                                          << "days" << false;
    QTest::newRow("text number reads 0") << now << day(2024, 3, 9) << 0 << "some"
                                         << "days" << false;
}

void TestSmartListRules::inTheLast()
{
    QFETCH(QDateTime, now);
    QFETCH(QDateTime, value);
    QFETCH(int, bit);
    QFETCH(QString, number);
    QFETCH(QString, unit);
    QFETCH(bool, inside);
    FixedListClock clock(now);
    ZTItem *item =
        m_library->add({{"title", "dated"}, {"dateObtained", value}, {"dateObtainedBitFlag", bit}});
    QVERIFY(item);
    ZTSmartList *list =
        ZTSmartList::createInManagedObjectContext(m_library->document->managedObjectContext(), 0);
    list->setQualifiers({rule("date", "dateObtained", "is in the last", period(number, unit))});
    QCOMPARE(list->itemBelongsOnList(*item), inside);
    list->setQualifiers({rule("date", "dateObtained", "is not in the last", period(number, unit))});
    QCOMPARE(list->itemBelongsOnList(*item), !inside);
}

void TestSmartListRules::combiningQualifiers_data()
{
    QTest::addColumn<QVariantList>("qualifiers");
    QTest::addColumn<bool>("allOf");
    QTest::addColumn<bool>("anyOf");
    const QVariantMap pass = rule("text", "title", "contains", single("hob"));
    const QVariantMap fail = rule("text", "title", "contains", single("ring"));
    const QVariantMap unknown = rule("colour", "title", "is", single("red"));
    QTest::newRow("none") << QVariantList() << true << false;
    QTest::newRow("pass") << QVariantList{pass} << true << true;
    QTest::newRow("pass and fail") << QVariantList{pass, fail} << false << true;
    QTest::newRow("fail and pass") << QVariantList{fail, pass} << false << true;
    QTest::newRow("fail") << QVariantList{fail} << false << false;
    QTest::newRow("unknown type alone") << QVariantList{unknown} << true << false;
    QTest::newRow("unknown type and fail") << QVariantList{unknown, fail} << false << false;
    QTest::newRow("unknown type and pass") << QVariantList{unknown, pass} << true << true;
    QTest::newRow("not a dictionary") << QVariantList{QStringLiteral("junk")} << true << false;
}

void TestSmartListRules::combiningQualifiers()
{
    QFETCH(QVariantList, qualifiers);
    QFETCH(bool, allOf);
    QFETCH(bool, anyOf);
    ZTItem *item = m_library->add({{"title", "The Hobbit"}});
    ZTSmartList *list =
        ZTSmartList::createInManagedObjectContext(m_library->document->managedObjectContext(), 0);
    list->setQualifiers(qualifiers);
    list->setAndOrFlag(0);
    QCOMPARE(list->itemBelongsOnList(*item), allOf);
    list->setAndOrFlag(1);
    QCOMPARE(list->itemBelongsOnList(*item), anyOf);
}

ZT_TEST_MAIN(TestSmartListRules)
#include "tst_smartlistrules.moc"
