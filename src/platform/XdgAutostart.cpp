#include "platform/XdgAutostart.h"

#include "logger/Logger.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QStandardPaths>
#include <QTextStream>

namespace Velmora::Platform {

namespace {
const char* const ExecKey = "Exec=";
}

QString Autostart::commandLine(const QString& programPath)
{
    return QStringLiteral("\"%1\" ").arg(programPath) + QStringLiteral("-minimized");
}

std::unique_ptr<Autostart> createAutostart()
{
    const QString name = QCoreApplication::applicationName();
    const QString entry = QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation)
        + QStringLiteral("/autostart/") + name + QStringLiteral(".desktop");
    return std::make_unique<XdgAutostart>(entry, QCoreApplication::applicationFilePath(), name);
}

XdgAutostart::XdgAutostart(const QString& entryPath, const QString& programPath, const QString& name)
    : m_entryPath(entryPath)
    , m_programPath(programPath)
    , m_name(name)
{
}

bool XdgAutostart::isEnabled() const
{
    QFile entry(m_entryPath);
    if (!entry.open(QIODevice::ReadOnly | QIODevice::Text))
        return false;
    // Session settings switch an entry off without removing it, by one of these two lines.
    bool exec = false;
    bool switchedOff = false;
    QTextStream in(&entry);
    while (!in.atEnd()) {
        const QString line = in.readLine().trimmed();
        if (line.startsWith(QLatin1String(ExecKey)))
            exec = line.mid(static_cast<int>(qstrlen(ExecKey))) == commandLine(m_programPath);
        else if (line == QLatin1String("Hidden=true") || line == QLatin1String("X-GNOME-Autostart-enabled=false"))
            switchedOff = true;
    }
    return exec && !switchedOff;
}

void XdgAutostart::setEnabled(bool enabled)
{
    if (!enabled) {
        QFile::remove(m_entryPath);
        return;
    }
    QDir().mkpath(QFileInfo(m_entryPath).absolutePath());
    QSaveFile entry(m_entryPath);
    if (!entry.open(QIODevice::WriteOnly | QIODevice::Text)) {
        Logger::error(QString(), QStringLiteral("Cannot write autostart entry %1").arg(m_entryPath));
        return;
    }
    QTextStream out(&entry);
    out << "[Desktop Entry]\n"
        << "Type=Application\n"
        << "Name=" << m_name << '\n'
        << ExecKey << commandLine(m_programPath) << '\n'
        << "X-GNOME-Autostart-enabled=true\n";
    out.flush();
    if (!entry.commit())
        Logger::error(QString(), QStringLiteral("Cannot write autostart entry %1").arg(m_entryPath));
}

} // namespace Velmora::Platform
