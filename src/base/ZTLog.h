#pragma once

#include <QString>

#include <functional>

// The program's central log. Every line names the context that wrote it (a
// number per subsystem) and a level. Lines go to Qt's message handler, and
// sinks (a test, a log window) can watch them as they are written.
class ZTLog {
public:
    enum class Level { Error = 1, Warning = 2, Info = 3, Verbose = 4 };
    struct Line {
        int context = 0;
        Level level = Level::Warning;
        QString message;
    };
    using Sink = std::function<void(const Line &)>;
    using Token = quint64;

    static void write(int context, Level level, const QString &message);
    static void warning(int context, const QString &message) { write(context, Level::Warning, message); }

    // Sinks are called on the writer's thread.
    static Token addSink(Sink sink);
    static void removeSink(Token token);
};
