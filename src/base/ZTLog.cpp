#include "base/ZTLog.h"

#include <QDebug>
#include <QMutex>

#include <vector>

namespace {
struct SinkEntry {
    ZTLog::Token token;
    ZTLog::Sink sink;
};

QMutex s_mutex;
std::vector<SinkEntry> s_sinks;
ZTLog::Token s_nextToken = 1;

const char *levelName(ZTLog::Level level)
{
    switch (level) {
    case ZTLog::Level::Error:
        return "error";
    case ZTLog::Level::Warning:
        return "warning";
    case ZTLog::Level::Info:
        return "info";
    case ZTLog::Level::Verbose:
        return "verbose";
    }
    return "?";
}
} // namespace

void ZTLog::write(int context, Level level, const QString &message)
{
    const Line line{context, level, message};
    std::vector<Sink> sinks;
    {
        QMutexLocker lock(&s_mutex);
        sinks.reserve(s_sinks.size());
        for (const SinkEntry &e : s_sinks)
            sinks.push_back(e.sink);
    }
    if (level <= Level::Warning)
        qWarning().noquote() << QStringLiteral("[%1 %2]").arg(context).arg(QLatin1String(levelName(level)))
                             << message;
    else
        qInfo().noquote() << QStringLiteral("[%1 %2]").arg(context).arg(QLatin1String(levelName(level)))
                          << message;
    for (const Sink &sink : sinks)
        sink(line);
}

ZTLog::Token ZTLog::addSink(Sink sink)
{
    QMutexLocker lock(&s_mutex);
    const Token token = s_nextToken++;
    s_sinks.push_back({token, std::move(sink)});
    return token;
}

void ZTLog::removeSink(Token token)
{
    QMutexLocker lock(&s_mutex);
    for (auto it = s_sinks.begin(); it != s_sinks.end(); ++it) {
        if (it->token == token) {
            s_sinks.erase(it);
            return;
        }
    }
}
