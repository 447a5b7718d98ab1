#include "support/ZTTestMain.h"

#include <QCoreApplication>
#include <QGuiApplication>
#ifdef QT_WIDGETS_LIB
#include <QApplication>
#endif

#include <cstdio>
#include <cstring>
#include <map>
#include <memory>
#include <string>

namespace {
struct Entry {
    ZTTestMain::Application application;
    ZTTestMain::Runner runner;
};

std::map<std::string, Entry> &registry()
{
    static std::map<std::string, Entry> tests;
    return tests;
}

std::unique_ptr<QCoreApplication> makeApplication(ZTTestMain::Application kind, int &argc, char **argv)
{
    if (kind == ZTTestMain::Application::Core)
        return std::make_unique<QCoreApplication>(argc, argv);
#ifdef QT_WIDGETS_LIB
    auto app = std::make_unique<QApplication>(argc, argv);
#else
    auto app = std::make_unique<QGuiApplication>(argc, argv);
#endif
    app->setAttribute(Qt::AA_Use96Dpi, true);
    return app;
}

int run(const Entry &entry, int argc, char **argv)
{
    const auto app = makeApplication(entry.application, argc, argv);
    return entry.runner(argc, argv);
}
} // namespace

bool ZTTestMain::registerTest(const char *name, Application application, Runner runner)
{
    registry().emplace(name, Entry{application, std::move(runner)});
    return true;
}

// "PROGRAM CLASS [QtTest options]" runs one class; "PROGRAM" alone runs them
// all, each in turn, and fails if any failed; "PROGRAM --list" names them.
int main(int argc, char **argv)
{
    if (argc > 1 && std::strcmp(argv[1], "--list") == 0) {
        for (const auto &[name, entry] : registry())
            std::printf("%s\n", name.c_str());
        return 0;
    }
    if (argc > 1 && argv[1][0] != '-') {
        const auto it = registry().find(argv[1]);
        if (it == registry().end()) {
            std::fprintf(stderr, "no test class named %s (--list names them)\n", argv[1]);
            return 2;
        }
        // The class's own name takes the place of the program's in QtTest's arguments.
        return run(it->second, argc - 1, argv + 1);
    }
    int failures = 0;
    for (const auto &[name, entry] : registry())
        failures += run(entry, argc, argv) != 0;
    return failures == 0 ? 0 : 1;
}
