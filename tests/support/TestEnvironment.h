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

} // namespace TestEnvironment

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
