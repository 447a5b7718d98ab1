#include "model/ZTDateFormatter.h"

#include "model/ZTPatternDateFormatter.h"

#include <QCoreApplication>

ZTDateFormatter ZTDateFormatter::fromDatePattern(const QString &pattern)
{
    QString format;
    for (const ZTPatternDateFormatter::Segment &segment : ZTPatternDateFormatter::segments(pattern)) {
        switch (segment.kind) {
        case ZTPatternDateFormatter::Segment::Literal:
            format += segment.literal;
            break;
        case ZTPatternDateFormatter::Segment::Day:
            format += segment.width == 2 ? QStringLiteral("%d") : QStringLiteral("%e");
            break;
        case ZTPatternDateFormatter::Segment::Month:
            format += segment.width == 2 ? QStringLiteral("%m") : QStringLiteral("%1m");
            break;
        case ZTPatternDateFormatter::Segment::Year:
            format += segment.width == 2 ? QStringLiteral("%y") : QStringLiteral("%Y");
            break;
        }
    }
    return ZTDateFormatter(format);
}

static QString twoDigits(int number)
{
    return QStringLiteral("%1").arg(number, 2, 10, QLatin1Char('0'));
}

int ZTDateFormatter::eraYear(const QDate &date)
{
    return date.year() < 0 ? -date.year() : date.year();
}

QString ZTDateFormatter::stringForObjectValue(const QVariant &value) const
{
    QDate date;
    if (value.typeId() == QMetaType::QDate)
        date = value.toDate();
    else if (value.typeId() == QMetaType::QDateTime)
        date = value.toDateTime().toLocalTime().date();
    if (!date.isValid())
        return QString();

    const int year = eraYear(date);
    QString text = m_dateFormat;
    text.replace(QLatin1String("%d"), twoDigits(date.day()));
    text.replace(QLatin1String("%e"), QString::number(date.day()));
    text.replace(QLatin1String("%m"), twoDigits(date.month()));
    text.replace(QLatin1String("%1m"), QString::number(date.month()));
    text.replace(QLatin1String("%Y"), QString::number(year));
    // The year's digits from the third on, as a number: 2005 gives "05",
    // 12345 gives "345", and a year below 100 gives "00".
    text.replace(QLatin1String("%y"), twoDigits(QString::number(year).mid(2).toInt()));
    return text;
}

QList<qint64> ZTDateFormatter::digitRuns(const QString &text, int maximum)
{
    QList<qint64> runs;
    bool inRun = false;
    for (const QChar c : text) {
        const int digit = c.isDigit() ? c.digitValue() : -1;
        if (digit < 0) {
            if (inRun && runs.size() == maximum)
                break;
            inRun = false;
            continue;
        }
        if (!inRun) {
            if (runs.size() == maximum)
                break;
            runs.append(0);
            inRun = true;
        }
        qint64 &number = runs.last();
        number = std::min(number * 10 + digit, tooLarge);
    }
    return runs;
}

QDateTime ZTDateFormatter::dateAtMidnight(qint64 year, int month, int day)
{
    if (year >= tooLarge || year < 0)
        return QDateTime();
    const int calendarYear = year == 0 ? -1 : int(year);
    const QDate first(calendarYear, month, 1);
    if (!first.isValid())
        return QDateTime();
    return QDateTime(first.addDays(day - 1), QTime(0, 0));
}

bool ZTDateFormatter::getObjectValue(QVariant *value, const QString &string, QString *errorDescription) const
{
    const auto fail = [errorDescription](const char *reason) {
        if (errorDescription)
            *errorDescription = QCoreApplication::translate("Localizable", reason);
        return false;
    };
    if (string.isNull())
        return fail("No date was given.");
    const QString text = string.trimmed();
    if (text.isEmpty())
        return true;

    const QList<qint64> runs = digitRuns(text, 3);
    if (runs.size() < 3)
        return fail("A date needs a day, a month and a year.");

    const qsizetype dayAt =
        std::max(m_dateFormat.indexOf(QLatin1String("%d")), m_dateFormat.indexOf(QLatin1String("%e")));
    const qsizetype monthAt =
        std::max(m_dateFormat.indexOf(QLatin1String("%m")), m_dateFormat.indexOf(QLatin1String("%1m")));
    const qsizetype fullYearAt = m_dateFormat.indexOf(QLatin1String("%Y"));
    const qsizetype yearAt = fullYearAt >= 0 ? fullYearAt : m_dateFormat.indexOf(QLatin1String("%y"));
    if (dayAt < 0 || monthAt < 0 || yearAt < 0)
        return fail("The date format lacks a day, a month or a year.");

    // The n-th token in the format takes the n-th run.
    const auto runFor = [&](qsizetype at) {
        return runs[int(at > dayAt) + int(at > monthAt) + int(at > yearAt)];
    };
    const qint64 day = runFor(dayAt);
    const qint64 month = runFor(monthAt);
    qint64 year = runFor(yearAt);
    if (day < 1 || day > 31)
        return fail("The day must lie between 1 and 31.");
    if (month < 1 || month > 12)
        return fail("The month must lie between 1 and 12.");
    // A two-digit year always falls in the 1900s: "05" is 1905. This is kept
    // rather than windowed, so that typing means what it always has.
    if (fullYearAt < 0 && year < tooLarge)
        year += 1900;

    const QDateTime date = dateAtMidnight(year, int(month), int(day));
    if (!date.isValid())
        return fail("The year is out of range.");
    if (value)
        *value = date;
    return true;
}
