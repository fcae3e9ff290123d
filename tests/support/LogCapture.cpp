#include "support/LogCapture.h"

#include <QMutexLocker>

namespace {

int levelOf(const QString& line)
{
    static const QStringList words = {QStringLiteral("TRACE"), QStringLiteral("DEBUG"), QStringLiteral("INFO"),
        QStringLiteral("WARNING"), QStringLiteral("ERROR")};
    for (int level = 0; level < words.size(); ++level) {
        if (line.indexOf(QLatin1String("m") + words.at(level) + QLatin1String("\033[0m")) > 0)
            return level;
    }
    return -1;
}

} // namespace

LogCapture::LogCapture()
{
    Velmora::Logger::setLineHook([this](const QString& line) {
        static const QString separator = QStringLiteral(" : \033[0m");
        const int at = line.indexOf(separator);
        const QString message = at < 0 ? QString() : line.mid(at + separator.size());
        QMutexLocker locker(&m_mutex);
        m_entries.append({levelOf(line), message, line});
    });
}

LogCapture::~LogCapture()
{
    Velmora::Logger::setLineHook({});
}

QVector<LogCapture::Entry> LogCapture::entries() const
{
    QMutexLocker locker(&m_mutex);
    return m_entries;
}

QStringList LogCapture::messages() const
{
    return messages(-1);
}

QStringList LogCapture::messages(int level) const
{
    QMutexLocker locker(&m_mutex);
    QStringList result;
    for (const Entry& entry : m_entries) {
        if (level < 0 || entry.level == level)
            result.append(entry.message);
    }
    return result;
}

int LogCapture::count(const QString& message) const
{
    return messages().count(message);
}

int LogCapture::countStartingWith(const QString& prefix) const
{
    int n = 0;
    for (const QString& message : messages())
        n += message.startsWith(prefix) ? 1 : 0;
    return n;
}

void LogCapture::clear()
{
    QMutexLocker locker(&m_mutex);
    m_entries.clear();
}
