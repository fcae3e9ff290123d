#pragma once

#include <QString>

namespace Velmora::Migration {

// The steps of a run. The numbers are part of the logs and of the order of the run.
enum MigrationStep {
    Idle = 0,
    InitializingDestinationDisk = 1,
    CreatingPartitions = 2,
    FormattingPartitions = 3,
    CopyingFiles = 4,
    FixingBootability = 5,
    Finished = 6,
    Failed = 7,
    Canceled = 8
};

// The step's text for logs; "Out of range" for a number that is no step.
QString migrationStepName(int step);

} // namespace Velmora::Migration
