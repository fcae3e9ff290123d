#pragma once

namespace Velmora::ServiceSim {

// How long the simulated work takes. The defaults feel like a real machine; tests pass small
// values on the command line so that whole suites run in seconds.
struct Timings {
    int taskMs = 250;          // cleaning a disk, creating or formatting a partition, boot setup
    int benchmarkMs = 450;     // one round of the speed test
    int scanStepMs = 300;      // between two progress reports of a scan or a filter calculation
    int scanSteps = 10;        // progress reports of a file-category scan
    int copyStepMs = 250;      // between two progress reports of a copy
    int copySteps = 8;         // progress reports of the copy of one partition
    int filterSteps = 4;       // progress reports of a filtered-size calculation
    int splitPieceMs = 2;      // pause between two pieces of a split frame
};

} // namespace Velmora::ServiceSim
