#include "lists/ZTListClock.h"

std::function<QDateTime()> ZTListClock::s_source;

QDateTime ZTListClock::now()
{
    return s_source ? s_source() : QDateTime::currentDateTime();
}

void ZTListClock::setSource(std::function<QDateTime()> source)
{
    s_source = std::move(source);
}
