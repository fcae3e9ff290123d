#include "DestinationGuard.h"

#include "BlockDevices.h"

namespace Velmora::Daemon::Migration {

namespace Wire = Velmora::Message;

Refusal checkDestination(const QString& disk, const QString& sourceDisk)
{
    const DiskUse use = BlockDevices::currentUse();
    if (use.rootDisks.contains(disk))
        return {Wire::ACCESS_DENIED, QStringLiteral("it holds the running system")};
    if (!sourceDisk.isEmpty() && disk == sourceDisk)
        return {Wire::ACCESS_DENIED, QStringLiteral("it is the source of the migration")};
    if (BlockDevices::readOnly(disk))
        return {Wire::ACCESS_DENIED, QStringLiteral("it is read-only")};
    if (use.mounted.contains(disk))
        return {Wire::ACCESS_DENIED, QStringLiteral("it has a file system mounted at %1").arg(use.mounted.value(disk))};
    if (use.swap.contains(disk))
        return {Wire::ACCESS_DENIED, QStringLiteral("it holds the swap area %1").arg(use.swap.value(disk))};
    const QStringList holders = BlockDevices::holders(disk);
    if (!holders.isEmpty())
        return {Wire::ACCESS_DENIED, QStringLiteral("it is in use by %1").arg(holders.join(QStringLiteral(", ")))};
    if (!BlockDevices::exclusivelyOpenable(disk))
        return {Wire::ACCESS_DENIED, QStringLiteral("the kernel reports it busy")};
    return {};
}

} // namespace Velmora::Daemon::Migration
