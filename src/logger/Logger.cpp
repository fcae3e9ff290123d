#include "logger/Logger.h"

#include <QDateTime>
#include <QDebug>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QMutex>
#include <QMutexLocker>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTextStream>

#include <atomic>
#include <cstdio>
#include <cstdlib>

namespace Velmora::Logger {

namespace {

constexpr qint64 MaxFileSize = 2000000;
constexpr int MaxFilesKept = 5;
constexpr int LevelFieldWidth = 18;

const char* const LogExtension = ".log";
const char* const LineTimeFormat = "yyyy/MM/dd hh:mm:ss:zzz";
const char* const RotationTimeFormat = "yyyy_MM_dd_hh_mm_ss_zzz";

QString logDir;
std::atomic<int> logLevel{Trace};
QTextStream* logStream = nullptr;
QFile* logFile = nullptr;
QMutex mutex;

LineHook lineHook;
bool consoleEnabled = true;

QString levelWord(int level)
{
    switch (level) {
    case Trace: return QStringLiteral("\033[35mTRACE\033[0m");
    case Debug: return QStringLiteral("\033[34mDEBUG\033[0m");
    case Info: return QStringLiteral("\033[32mINFO\033[0m");
    case Warning: return QStringLiteral("\033[33mWARNING\033[0m");
    default: return QStringLiteral("\033[31mERROR\033[0m");
    }
}

QString liveFilePath()
{
    return logDir + logFileBaseName() + QLatin1String(LogExtension);
}

// Called with the mutex held (or before any thread can log).
int initializeUnlocked(int level)
{
    logLevel = level;
    if (logFile && logStream)
        return -1;

    logDir = QStandardPaths::writableLocation(QStandardPaths::AppDataLocation) + QDir::separator();
    QDir dir(logDir);
    if (!dir.exists()) {
        qDebug().noquote() << "Creating log directory";
        if (!dir.mkpath(logDir))
            qDebug().noquote() << "Unable to create log directory";
    }

    delete logFile;
    logFile = new QFile(liveFilePath());
    if (logFile->open(QIODevice::ReadWrite | QIODevice::Append | QIODevice::Text)) {
        logStream = new QTextStream(logFile);
        logStream->setCodec("UTF-8");
        return 0;
    }

    qDebug().noquote() << "Cannot create log file: " + logFile->fileName();
    exit(1);
}

void removeOldFiles()
{
    QDir dir(logDir);
    QFileInfoList files = dir.entryInfoList(
        {QStringLiteral("*") + QLatin1String(LogExtension)}, QDir::Files | QDir::Writable, QDir::Time);
    while (files.size() >= MaxFilesKept + 1) {
        const QFileInfo oldest = files.takeLast();
        qDebug().noquote() << "Removing log file: " + oldest.fileName();
        QFile::remove(oldest.absoluteFilePath());
    }
}

void rotateIfNeeded()
{
    const qint64 size = logFile->size();
    if (size <= MaxFileSize)
        return;

    qDebug().noquote() << "Log file size exceeded (" + QString::number(size) + " bytes)";
    logStream->flush();
    delete logStream;
    logStream = nullptr;
    logFile->close();

    const QString rotated = logDir + logFileBaseName() + QLatin1Char('_')
        + QDateTime::currentDateTime().toString(QLatin1String(RotationTimeFormat)) + QLatin1String(LogExtension);
    if (!logFile->rename(rotated)) {
        qDebug().noquote() << "Cannot rename log file";
        exit(1);
    }

    delete logFile;
    logFile = nullptr;
    // The fresh live file is listed too, so that at most five log files remain, it among them.
    initializeUnlocked(Debug);
    removeOldFiles();
}

void write(int level, const QString& tag, const QString& message)
{
    if (!isEnabled(level))
        return;

    QMutexLocker locker(&mutex);
    const QDateTime now = QDateTime::currentDateTime();
    if (!logStream)
        initializeUnlocked(Debug);
    if (!logStream)
        return;

    const QString line = now.toString(QLatin1String(LineTimeFormat)) + QLatin1Char(' ')
        + levelWord(level).leftJustified(LevelFieldWidth) + QLatin1Char(' ')
        + QStringLiteral("\033[36m") + tag + QStringLiteral(" : \033[0m") + message;

    if (consoleEnabled) {
        const QByteArray utf8 = line.toUtf8() + '\n';
        fwrite(utf8.constData(), 1, static_cast<size_t>(utf8.size()), stdout);
        fflush(stdout);
    }

    static const QRegularExpression colourSequence(QStringLiteral("\033[[0-9]+m"));
    QString plain = line;
    plain.remove(colourSequence);
    *logStream << plain << '\n';
    logStream->flush();

    if (lineHook)
        lineHook(line);

    rotateIfNeeded();
}

} // namespace

int initialize(int level)
{
    QMutexLocker locker(&mutex);
    return initializeUnlocked(level);
}

void setLevel(int level)
{
    qDebug().noquote() << QStringLiteral("Change log level: %1 -> %2").arg(logLevel.load()).arg(level);
    logLevel = level;
}

bool isEnabled(int level)
{
    return logLevel.load(std::memory_order_relaxed) <= level;
}

QString logFileBaseName()
{
    return QStringLiteral("Velmora");
}

QString logDirectory()
{
    QMutexLocker locker(&mutex);
    return logDir;
}

void trace(const QString& tag, const QString& message) { write(Trace, tag, message); }
void debug(const QString& tag, const QString& message) { write(Debug, tag, message); }
void info(const QString& tag, const QString& message) { write(Info, tag, message); }
void warning(const QString& tag, const QString& message) { write(Warning, tag, message); }
void error(const QString& tag, const QString& message) { write(Error, tag, message); }

void setLineHook(LineHook hook)
{
    QMutexLocker locker(&mutex);
    lineHook = std::move(hook);
}

void setConsoleEnabled(bool enabled)
{
    QMutexLocker locker(&mutex);
    consoleEnabled = enabled;
}

void shutdown()
{
    QMutexLocker locker(&mutex);
    delete logStream;
    logStream = nullptr;
    delete logFile;
    logFile = nullptr;
}

} // namespace Velmora::Logger
