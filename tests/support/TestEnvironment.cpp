#include "support/TestEnvironment.h"

#include <QApplication>
#include <QTest>

#include <memory>
#include <vector>

#include <atomic>
#include <cstdio>

namespace TestEnvironment {

namespace {

std::atomic<bool> warningSeen{false};
QtMessageHandler previousHandler = nullptr;

void trapHandler(QtMsgType type, const QMessageLogContext& context, const QString& message)
{
    // The offscreen platform's tray support warns about a signal of its own; that one is not ours.
    const bool foreign = message.contains(QLatin1String("QPlatformNativeInterface"));
    if (type == QtWarningMsg && message.startsWith(QLatin1String("QObject::connect")) && !foreign) {
        warningSeen = true;
        fprintf(stderr, "FAIL! connection warning: %s\n", qPrintable(message));
    }
    if (previousHandler)
        previousHandler(type, context, message);
}

} // namespace

QString uniqueName(const QString& prefix)
{
    static int counter = 0;
    return QStringLiteral("%1-%2-%3").arg(prefix).arg(QCoreApplication::applicationPid()).arg(++counter);
}

void installConnectionWarningTrap()
{
    previousHandler = qInstallMessageHandler(trapHandler);
}

bool connectionWarningSeen()
{
    return warningSeen;
}

namespace {

struct Suites {
    std::vector<SuiteFactory> factories;
    bool needsWidgets = false;
};

Suites& suites()
{
    static Suites all;
    return all;
}

} // namespace

int registerSuite(SuiteFactory factory, bool needsWidgets)
{
    suites().factories.push_back(factory);
    suites().needsWidgets = suites().needsWidgets || needsWidgets;
    return int(suites().factories.size());
}

int runSuites(int argc, char* argv[])
{
    std::unique_ptr<QCoreApplication> app(suites().needsWidgets ? new QApplication(argc, argv)
                                                                 : new QCoreApplication(argc, argv));
    installConnectionWarningTrap();
    int failed = 0;
    for (SuiteFactory factory : suites().factories) {
        std::unique_ptr<QObject> suite(factory());
        failed += QTest::qExec(suite.get(), argc, argv) != 0 ? 1 : 0;
    }
    return failed != 0 || connectionWarningSeen() ? 1 : 0;
}

} // namespace TestEnvironment
