#pragma once

#include "FaultPlan.h"
#include "Timings.h"

#include <QString>
#include <QStringList>

namespace Velmora::ServiceSim {

// The command line of the simulated service.
struct SimulatorOptions {
    QString serverName = QStringLiteral("VelmoraServer");
    QString scenario = QStringLiteral("default");
    bool listScenarios = false;
    bool quiet = false;
    quint32 seed = 1;
    Timings timings;
    FaultPlan faults; // command-line faults; the scenario's are added to them

    // Reads the arguments; on a mistake returns false with the reason in `error`.
    bool parse(const QStringList& arguments, QString* error);
};

} // namespace Velmora::ServiceSim
