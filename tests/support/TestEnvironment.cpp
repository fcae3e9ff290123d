#include "support/TestEnvironment.h"

#include <QCoreApplication>

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

} // namespace TestEnvironment
