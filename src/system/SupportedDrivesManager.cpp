#include "system/SupportedDrivesManager.h"

#include "application/Logger.h"
#include "system/Drive.h"

namespace Velmora::System {

namespace {

const QString MakerWord = QStringLiteral("BRANTEL");

QString withoutBlanks(QString text)
{
    return text.remove(QLatin1Char(' '));
}

} // namespace

SupportedDrivesManager* SupportedDrivesManager::s_instance = nullptr;

SupportedDrivesManager::SupportedDrivesManager(QObject* parent)
    : QObject(parent)
{
}

SupportedDrivesManager* SupportedDrivesManager::instance()
{
    if (!s_instance)
        s_instance = new SupportedDrivesManager;
    return s_instance;
}

void SupportedDrivesManager::release()
{
    delete s_instance;
    s_instance = nullptr;
}

QList<SupportedDrive> SupportedDrivesManager::matches(const Drive& drive) const
{
    // Drives report their model with blanks in places the list does not have them; the list's
    // own entries are taken as they are.
    const QString model = withoutBlanks(drive.model());
    const QString firmware = withoutBlanks(drive.firmwareVersion());
    QList<SupportedDrive> result;
    // A copy: the list may be replaced between two look-ups.
    const QList<SupportedDrive> list = m_supportedDrives;
    for (const SupportedDrive& entry : list) {
        if (model.contains(entry.model(), Qt::CaseInsensitive)
            && firmware.contains(entry.firmware(), Qt::CaseInsensitive))
            result.append(entry);
    }
    return result;
}

bool SupportedDrivesManager::isSupportedDrive(const Drive& drive)
{
    const QList<SupportedDrive> found = instance()->matches(drive);
    for (const SupportedDrive& entry : found) {
        Logger::info(QString(), QStringLiteral("Drive %1 is recognized as BRANTEL drive [SMART class %2]")
                                    .arg(drive.model(), entry.smartType()));
    }
    if (!found.isEmpty())
        return true;
    // Without a list, for instance at a first start with no network, the name is all there is.
    return withoutBlanks(drive.model()).contains(MakerWord, Qt::CaseInsensitive);
}

QString SupportedDrivesManager::smartType(const Drive& drive)
{
    QString type;
    const QList<SupportedDrive> found = instance()->matches(drive);
    for (const SupportedDrive& entry : found) {
        type = entry.smartType();
        Logger::debug(QString(), QStringLiteral("Smart type ") + type);
    }
    return type;
}

} // namespace Velmora::System
