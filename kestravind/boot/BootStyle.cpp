#include "boot/BootStyle.h"

#include <QFileInfo>

namespace Velmora::Daemon::Boot {

bool machineStartedByUefi(const QString& firmwareFolder)
{
    return QFileInfo(firmwareFolder).isDir();
}

bool isEfiSystemPartition(const QString& gptType, quint32 mbrType)
{
    return gptType.compare(QLatin1String("c12a7328-f81f-11d2-ba4b-00a0c93ec93b"), Qt::CaseInsensitive) == 0
        || mbrType == 0xef;
}

BootStyle sourceBootStyle(bool sourceIsRunningSystem, bool machineIsUefi, bool sourceHasEfiSystemPartition)
{
    if (sourceIsRunningSystem)
        return machineIsUefi ? BootStyle::Uefi : BootStyle::Bios;
    return sourceHasEfiSystemPartition ? BootStyle::Uefi : BootStyle::Bios;
}

} // namespace Velmora::Daemon::Boot
