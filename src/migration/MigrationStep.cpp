#include "migration/MigrationStep.h"

#include <QMap>

namespace Velmora::Migration {

QString migrationStepName(int step)
{
    static const QMap<int, QString> names = {
        {Idle, QStringLiteral("Idle")},
        {InitializingDestinationDisk, QStringLiteral("Initializing destination disk")},
        {CreatingPartitions, QStringLiteral("Creating partitions")},
        {FormattingPartitions, QStringLiteral("Formatting partitions")},
        {CopyingFiles, QStringLiteral("Copying files")},
        {FixingBootability, QStringLiteral("Fixing bootability")},
        {Finished, QStringLiteral("Finished")},
        {Failed, QStringLiteral("Failed")},
        {Canceled, QStringLiteral("Canceled")},
    };
    return names.value(step, QStringLiteral("Out of range"));
}

} // namespace Velmora::Migration
