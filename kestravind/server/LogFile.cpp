#include "LogFile.h"

#include <QDateTime>
#include <QFile>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <mutex>

namespace Velmora::Daemon {

const char* const LogFile::BaseName = "kestravind.log";

namespace {

std::mutex logMutex;
QByteArray logPath;
int logFd = -1;
qint64 logSize = 0;

// The file is made by the service, never followed through a link, and readable by root alone:
// a log names users and paths.
int openLog()
{
    return ::open(logPath.constData(), O_WRONLY | O_APPEND | O_CREAT | O_NOFOLLOW | O_CLOEXEC, 0600);
}

void rotateIfFull()
{
    if (logSize < LogFile::MaxBytes)
        return;
    ::close(logFd);
    ::rename(logPath.constData(), (logPath + ".1").constData());
    logFd = openLog();
    logSize = 0;
}

void writeLine(QtMsgType, const QMessageLogContext& context, const QString& message)
{
    const QByteArray text = (context.category && qstrcmp(context.category, "default") != 0
        ? QByteArray(context.category) + ": " : QByteArray()) + message.toUtf8() + '\n';
    const std::lock_guard<std::mutex> lock(logMutex);
    std::fwrite(text.constData(), 1, size_t(text.size()), stderr);
    if (logFd < 0)
        return;
    const QByteArray line = QDateTime::currentDateTime().toString(Qt::ISODateWithMs).toUtf8() + ' ' + text;
    if (::write(logFd, line.constData(), size_t(line.size())) == line.size())
        logSize += line.size();
    rotateIfFull();
}

} // namespace

bool LogFile::install(const QString& folder, QString* error)
{
    logPath = QFile::encodeName(folder + QLatin1Char('/') + QLatin1String(BaseName));
    logFd = openLog();
    if (logFd < 0) {
        *error = QStringLiteral("Cannot write the log file %1: %2").arg(QFile::decodeName(logPath), QString::fromLocal8Bit(std::strerror(errno)));
        return false;
    }
    struct stat status {};
    logSize = ::fstat(logFd, &status) == 0 ? status.st_size : 0;
    qInstallMessageHandler(writeLine);
    return true;
}

} // namespace Velmora::Daemon
