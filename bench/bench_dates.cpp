// How fast item dates are shown and typed dates are read: a library window
// formats a date for every visible row, and an import reads one per record.
#include "model/ZTDateFormatter.h"
#include "model/ZTDateUtil.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <cstdio>

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    constexpr int count = 200000;
    const QDateTime start(QDate(1950, 1, 1), QTime(0, 0));
    for (const char *name : {"en_US", "de_DE", "ja_JP"}) {
        const QLocale locale(QString::fromLatin1(name));
        qsizetype length = 0;
        QElapsedTimer timer;
        timer.start();
        for (int i = 0; i < count; ++i)
            length +=
                ZTDateUtil::displayString(start.addDays(i % 30000), ZTDateBit::fromStored(i % 3), locale)
                    .size();
        const double displayNs = double(timer.nsecsElapsed()) / count;

        const ZTDateFormatter formatter =
            ZTDateFormatter::fromDatePattern(ZTDateUtil::standardDateFormatString(locale));
        QStringList texts;
        for (int i = 0; i < 1000; ++i)
            texts.append(formatter.stringForObjectValue(start.addDays(i * 37)));
        int parsed = 0;
        timer.restart();
        for (int i = 0; i < count; ++i) {
            QVariant value;
            parsed += formatter.getObjectValue(&value, texts[i % texts.size()]) ? 1 : 0;
        }
        const double parseNs = double(timer.nsecsElapsed()) / count;
        std::printf("%s: displayString %.0f ns/date, token parse %.0f ns/date (%d parsed, %lld chars)\n",
                    name, displayNs, parseNs, parsed, static_cast<long long>(length));
    }
    return 0;
}
