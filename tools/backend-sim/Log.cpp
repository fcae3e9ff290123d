#include "Log.h"

#include <QTime>

#include <atomic>
#include <cstdio>
#include <mutex>

namespace Velmora::BackendSim::Log {

namespace {

std::mutex outputMutex;
std::atomic<bool> quietMode{false};

void write(const char* level, const QString& text)
{
    const QByteArray line = QStringLiteral("%1 %2 %3\n")
                                .arg(QTime::currentTime().toString(QStringLiteral("HH:mm:ss.zzz")),
                                     QLatin1String(level), text)
                                .toUtf8();
    std::lock_guard<std::mutex> lock(outputMutex);
    fwrite(line.constData(), 1, size_t(line.size()), stderr);
    fflush(stderr);
}

} // namespace

void info(const QString& text)
{
    if (!quietMode)
        write("INFO", text);
}

void warning(const QString& text)
{
    write("WARN", text);
}

void setQuiet(bool quiet)
{
    quietMode = quiet;
}

} // namespace Velmora::BackendSim::Log
