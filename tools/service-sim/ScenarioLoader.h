#pragma once

#include "FaultPlan.h"
#include "Machine.h"

#include <QString>

namespace Velmora::ServiceSim {

// Reads a scenario: a JSON file that describes the machine. Drives, partitions and the summary use
// the field names of the service's messages ("Model", "Partitions", "GptType", ...); sizes may be
// written with units ("100 MiB", "480 GB") and one partition of a drive may take the "rest".
// A partition without "Id" or "Offset" is numbered and placed after the one before it.
// Beside those fields a drive may carry "smart" (attribute table) and "benchmark"
// ({"readMBps", "writeMBps"}), a partition "files" (its tree), "systemPaths",
// "systemIgnoredPaths", "faultedFiles" and "faultedDirectories"; the scenario may carry "faults".
class ScenarioLoader
{
public:
    // A path, or the name of a built-in scenario ("default", "health-warnings", ...).
    static QString resolve(const QString& nameOrPath);
    static QStringList builtInNames();

    static bool load(const QString& nameOrPath, Machine* machine, FaultPlan* faults, QString* error);

private:
    static bool loadDrive(QJsonObject drive, Machine* machine, QString* error);
    static bool normalizeSizes(QJsonObject* drive, QString* error);
    static void layOutPartitions(Machine::DriveInfo* drive, int restIndex);
    static bool loadPartitionContent(const QJsonObject& partition, quint32 driveId, quint32 partitionId,
        Machine* machine, QString* error);
    static void fillDerivedFields(Machine::DriveInfo* drive, Machine* machine);
};

} // namespace Velmora::ServiceSim
