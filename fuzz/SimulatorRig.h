#pragma once

// The simulated service's request side as its main() wires it, over a machine of its own: the
// router and every request group. Work that the service spreads over time takes no time here, so
// that one turn of the event loop carries a task through.

#include "BenchmarkRequests.h"
#include "FaultPlan.h"
#include "FileCategoryRequests.h"
#include "FilterRequests.h"
#include "LogFileRequests.h"
#include "Machine.h"
#include "MigrationRequests.h"
#include "RequestRouter.h"
#include "SmartRequests.h"
#include "SystemRequests.h"
#include "Timings.h"

namespace Velmora::ServiceSim {

inline Timings instantTimings()
{
    Timings timings;
    timings.taskMs = 0;
    timings.benchmarkMs = 0;
    timings.scanStepMs = 0;
    timings.scanSteps = 2;
    timings.copyStepMs = 0;
    timings.copySteps = 2;
    timings.filterSteps = 2;
    timings.splitPieceMs = 0;
    return timings;
}

struct SimulatorRig {
    SimulatorRig(const Machine& prototype, const FaultPlan& plan)
        : machine(prototype)
        , faults(plan)
        , timings(instantTimings())
        , router(faults)
    {
        router.addGroup(new SystemRequests(machine, timings, {1, 1, 7}));
        router.addGroup(new SmartRequests(machine, timings));
        router.addGroup(new FileCategoryRequests(machine, timings));
        router.addGroup(new BenchmarkRequests(machine, timings, 1));
        router.addGroup(new MigrationRequests(machine, timings));
        router.addGroup(new FilterRequests(machine, timings));
        router.addGroup(new LogFileRequests(machine, timings));
        router.setUnplugHandler([this](quint32 driveId, ClientConnection*) { machine.removeDrive(driveId); });
    }

    Machine machine;
    FaultPlan faults;
    Timings timings;
    RequestRouter router;
};

} // namespace Velmora::ServiceSim
