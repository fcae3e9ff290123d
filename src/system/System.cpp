#include "system/System.h"

#include "logger/Logger.h"
#include "system/Drive.h"

namespace Velmora::System {

System::System(QObject* parent)
    : QObject(parent)
{
}

QList<Drive*> System::findDrives(const QString& modelPart, const QString& firmware) const
{
    QList<Drive*> found;
    for (Drive* drive : m_drives) {
        if (drive->model().indexOf(modelPart) >= 0 && drive->firmwareVersion() == firmware)
            found.append(drive);
    }
    return found;
}

void System::addDrive(Drive* drive)
{
    drive->setParent(this);
    Logger::debug(QString(), QStringLiteral("Drive %1 added: \n%2").arg(drive->id()).arg(drive->toString()));
    if (m_drives.contains(drive->id()))
        Logger::warning(QString(), QStringLiteral("Overwrite existing drive (id: %1)").arg(drive->id()));
    m_drives.insert(drive->id(), drive);
    connect(drive, &Drive::requestFileCategoriesUpdate, this, &System::requestFileCategoriesUpdate);
    connect(drive, &Drive::stopFileCategoriesUpdate, this, &System::stopFileCategoriesUpdate);
    connect(drive, &Drive::notifyError, this, &System::notifyError);
    emit driveAdded(drive->id());
}

void System::removeDrive(int id)
{
    if (!m_drives.contains(id)) {
        Logger::error(QString(), QStringLiteral("Attempt to remove unexisting drive (id: %1)].").arg(id));
        return;
    }
    Logger::debug(QString(), QStringLiteral("Drive %1 removed.").arg(id));
    // The drive object stays a child of the system: pointers held elsewhere remain valid.
    m_drives.remove(id);
    if (id == m_currentDriveId) {
        if (!m_drives.isEmpty())
            m_currentDriveId = m_drives.firstKey();
        else
            Logger::warning(QString(), QStringLiteral("Last drive removed from system."));
    }
    emit driveRemoved(id);
}

void System::setCurrentDrive(int driveId)
{
    Logger::warning(QString(), QStringLiteral("Changing system selected drive to: %1").arg(driveId));
    if (!m_drives.contains(driveId)) {
        Logger::warning(QString(), QStringLiteral("Set unexisting drive id as current drive id."));
        return;
    }
    if (driveId == m_currentDriveId)
        return;
    m_currentDriveId = driveId;
    emit currentDriveChanged(driveId);
}

void System::refresh()
{
    emit requestSystemDataUpdate();
}

void System::enableTrimCommand()
{
    Logger::debug(QString(), QStringLiteral("Requesting to enable TRIM command"));
    emit requestEnableTrimCommand();
}

namespace {
template <typename T>
bool change(T& field, const T& value)
{
    if (field == value)
        return false;
    field = value;
    return true;
}
} // namespace

void System::setAhciEnabled(bool enabled)
{
    if (change(m_ahciEnabled, enabled))
        emit systemConfigurationChanged();
}

void System::setTrimEnabled(bool enabled)
{
    if (change(m_trimEnabled, enabled))
        emit systemConfigurationChanged();
}

void System::setUefi(bool isUefi)
{
    if (change(m_isUefi, isUefi))
        emit systemConfigurationChanged();
}

void System::set64Bit(bool is64Bit)
{
    if (change(m_is64Bit, is64Bit))
        emit systemConfigurationChanged();
}

void System::setComputerName(const QString& name)
{
    if (change(m_computerName, name))
        emit systemConfigurationChanged();
}

void System::setOperatingSystem(const QString& name)
{
    if (change(m_operatingSystem, name))
        emit systemConfigurationChanged();
}

void System::setMotherboard(const QString& motherboard)
{
    if (change(m_motherboard, motherboard))
        emit systemConfigurationChanged();
}

} // namespace Velmora::System
