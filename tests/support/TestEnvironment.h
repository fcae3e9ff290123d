#pragma once

#include <QString>
#include <QTest>

namespace TestEnvironment {

// A name for a system-wide resource (pipe, shared memory) that no other running suite uses.
QString uniqueName(const QString& prefix);

// Fails the run when Qt reports a connection to a signal or slot that does not exist among our
// own classes; such a warning otherwise passes silently.
void installConnectionWarningTrap();
bool connectionWarningSeen();

// The suites of one subsystem share a program: each registers its class, and the program's main
// (support/SuitesMain.cpp, taken when the program has no main of its own) runs them in turn.
using SuiteFactory = QObject* (*)();
int registerSuite(SuiteFactory factory, bool needsWidgets);
int runSuites(int argc, char* argv[]);

} // namespace TestEnvironment

#define KESTRAVIN_TEST_SUITE(TestClass)                                                                \
    static const int registered##TestClass =                                                           \
        TestEnvironment::registerSuite([]() -> QObject* { return new TestClass; }, false);

// The same for suites that make widgets: the program then runs under a QApplication.
#define KESTRAVIN_GUI_TEST_SUITE(TestClass)                                                            \
    static const int registered##TestClass =                                                           \
        TestEnvironment::registerSuite([]() -> QObject* { return new TestClass; }, true);

// QTEST_GUILESS_MAIN with the connection-warning trap.
#define KESTRAVIN_TEST_MAIN(TestClass)                                                                 \
    int main(int argc, char* argv[])                                                                   \
    {                                                                                                  \
        QCoreApplication app(argc, argv);                                                              \
        TestEnvironment::installConnectionWarningTrap();                                               \
        TestClass tc;                                                                                  \
        QTEST_SET_MAIN_SOURCE_PATH                                                                     \
        const int result = QTest::qExec(&tc, argc, argv);                                              \
        return TestEnvironment::connectionWarningSeen() ? 1 : result;                                  \
    }

// The same for suites that make widgets: a QApplication instead. Include <QApplication> first.
#define KESTRAVIN_GUI_TEST_MAIN(TestClass)                                                             \
    int main(int argc, char* argv[])                                                                   \
    {                                                                                                  \
        QApplication app(argc, argv);                                                                  \
        TestEnvironment::installConnectionWarningTrap();                                               \
        TestClass tc;                                                                                  \
        QTEST_SET_MAIN_SOURCE_PATH                                                                     \
        const int result = QTest::qExec(&tc, argc, argv);                                              \
        return TestEnvironment::connectionWarningSeen() ? 1 : result;                                  \
    }
