#pragma once

#include <QtTest>

#include <functional>

// Test programs are one executable per area of src/, each holding several
// test classes; CTest runs one class per process by naming it as the first
// argument. A class registers itself with the macro at the end of its file.
namespace ZTTestMain {
enum class Application { Core, Gui };
using Runner = std::function<int(int argc, char **argv)>;
bool registerTest(const char *name, Application application, Runner runner);
} // namespace ZTTestMain

#define ZT_TEST_REGISTER(Class, Kind)                                                                        \
    static const bool s_registered##Class =                                                                  \
        ZTTestMain::registerTest(#Class, ZTTestMain::Application::Kind, [](int argc, char **argv) {          \
            Class test;                                                                                      \
            QTEST_SET_MAIN_SOURCE_PATH                                                                       \
            return QTest::qExec(&test, argc, argv);                                                          \
        });

// A class that needs no window system.
#define ZT_TEST_MAIN(Class) ZT_TEST_REGISTER(Class, Core)
// A class that paints, reads images through the window system or shows widgets.
#define ZT_TEST_GUI_MAIN(Class) ZT_TEST_REGISTER(Class, Gui)

// A class whose program does more than run it (a child process of its own, a
// set-up of the application): `function` is called as main would be, after
// the application object is made.
#define ZT_TEST_CUSTOM_MAIN(Name, Kind, function)                                                            \
    static const bool s_registered##Name =                                                                   \
        ZTTestMain::registerTest(#Name, ZTTestMain::Application::Kind, function);
