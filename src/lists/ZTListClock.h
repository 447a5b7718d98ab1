#pragma once

#include <QDateTime>

#include <functional>

// The moment smart lists take as "now". Rules such as "is in the last 5 days"
// and the daily expiry depend on it, so tests and benchmarks can set it.
class ZTListClock {
public:
    static QDateTime now();
    // An empty function returns to the system clock.
    static void setSource(std::function<QDateTime()> source);

private:
    static std::function<QDateTime()> s_source;
};
