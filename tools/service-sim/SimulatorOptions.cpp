#include "SimulatorOptions.h"

#include <QCommandLineParser>

namespace Velmora::ServiceSim {

namespace {

bool readCount(const QCommandLineParser& parser, const QString& name, int minimum, int* value, QString* error)
{
    if (!parser.isSet(name))
        return true;
    bool ok = false;
    const int number = parser.value(name).toInt(&ok);
    if (!ok || number < minimum) {
        *error = QStringLiteral("--%1 needs a whole number of at least %2").arg(name).arg(minimum);
        return false;
    }
    *value = number;
    return true;
}

void declareOptions(QCommandLineParser& parser, const SimulatorOptions& defaults)
{
    parser.setApplicationDescription(QStringLiteral(
        "Simulated Kestravin service: answers the pipe protocol like a machine with drives."));
    parser.addHelpOption();
    parser.addOptions({
        {QStringLiteral("name"), QStringLiteral("Pipe name to listen on."), QStringLiteral("name"), defaults.serverName},
        {QStringLiteral("scenario"), QStringLiteral("Scenario file, or the name of a built-in one."),
            QStringLiteral("file|name"), defaults.scenario},
        {QStringLiteral("list-scenarios"), QStringLiteral("Print the built-in scenarios and exit.")},
        {QStringLiteral("quiet"), QStringLiteral("Log to the log file only, not to the console.")},
        {QStringLiteral("seed"), QStringLiteral("Seed of the speed jitter, garbage bytes and random frame pieces."),
            QStringLiteral("n")},
        {QStringLiteral("task-ms"), QStringLiteral("Time to clean, create, format, make bootable."), QStringLiteral("ms")},
        {QStringLiteral("benchmark-ms"), QStringLiteral("Time of one benchmark round."), QStringLiteral("ms")},
        {QStringLiteral("scan-step-ms"), QStringLiteral("Time between progress reports of scans and filter sizes."),
            QStringLiteral("ms")},
        {QStringLiteral("scan-steps"), QStringLiteral("Progress reports of a file-category scan."), QStringLiteral("n")},
        {QStringLiteral("copy-step-ms"), QStringLiteral("Time between progress reports of a copy."), QStringLiteral("ms")},
        {QStringLiteral("copy-steps"), QStringLiteral("Progress reports of the copy of one partition."), QStringLiteral("n")},
        {QStringLiteral("filter-steps"), QStringLiteral("Progress reports of a filtered-size calculation."),
            QStringLiteral("n")},
        {QStringLiteral("split-piece-ms"), QStringLiteral("Pause between the pieces of a split frame."), QStringLiteral("ms")},
        {QStringLiteral("delay"), QStringLiteral("Answer requests of TYPE late (repeatable)."), QStringLiteral("TYPE=ms")},
        {QStringLiteral("never"), QStringLiteral("Never answer requests of TYPE (repeatable)."), QStringLiteral("TYPE")},
        {QStringLiteral("fail"), QStringLiteral("Answer the Nth (or every) request of TYPE with an error code (repeatable)."),
            QStringLiteral("TYPE[#N]=code")},
        {QStringLiteral("garbage"), QStringLiteral("Write this many garbage bytes before every frame."), QStringLiteral("n")},
        {QStringLiteral("split"), QStringLiteral("Write frames in pieces of this size, or of random size."),
            QStringLiteral("n|random")},
        {QStringLiteral("drop-after"), QStringLiteral("Close a connection after this many frames sent."), QStringLiteral("n")},
        {QStringLiteral("service-version"), QStringLiteral("Answer the version handshake with this version."),
            QStringLiteral("x.y.z")},
        {QStringLiteral("exit-after"), QStringLiteral("End the process on this request, unanswered."), QStringLiteral("n")},
        {QStringLiteral("unplug"), QStringLiteral("Take DRIVE out of the machine when the Nth (or first) request of TYPE "
                                                  "arrives (repeatable)."),
            QStringLiteral("DRIVE@TYPE[#N]")},
    });
}

bool readTimings(const QCommandLineParser& parser, Timings* timings, QString* error)
{
    return readCount(parser, QStringLiteral("task-ms"), 0, &timings->taskMs, error)
        && readCount(parser, QStringLiteral("benchmark-ms"), 0, &timings->benchmarkMs, error)
        && readCount(parser, QStringLiteral("scan-step-ms"), 0, &timings->scanStepMs, error)
        && readCount(parser, QStringLiteral("scan-steps"), 1, &timings->scanSteps, error)
        && readCount(parser, QStringLiteral("copy-step-ms"), 0, &timings->copyStepMs, error)
        && readCount(parser, QStringLiteral("copy-steps"), 1, &timings->copySteps, error)
        && readCount(parser, QStringLiteral("filter-steps"), 1, &timings->filterSteps, error)
        && readCount(parser, QStringLiteral("split-piece-ms"), 0, &timings->splitPieceMs, error);
}

bool readFaults(const QCommandLineParser& parser, FaultPlan* faults, QString* error)
{
    if (!readCount(parser, QStringLiteral("garbage"), 0, &faults->garbageBytes, error)
        || !readCount(parser, QStringLiteral("drop-after"), 1, &faults->dropAfterFrames, error)
        || !readCount(parser, QStringLiteral("exit-after"), 1, &faults->exitAfterRequests, error))
        return false;
    const QList<QPair<QString, bool (FaultPlan::*)(const QString&, QString*)>> repeatable{
        {QStringLiteral("delay"), &FaultPlan::addDelay},
        {QStringLiteral("never"), &FaultPlan::addSilence},
        {QStringLiteral("fail"), &FaultPlan::addFailure},
        {QStringLiteral("unplug"), &FaultPlan::addUnplug},
    };
    for (const auto& option : repeatable) {
        for (const QString& text : parser.values(option.first)) {
            if (!(faults->*option.second)(text, error))
                return false;
        }
    }
    if (parser.isSet(QStringLiteral("split")) && !faults->setSplit(parser.value(QStringLiteral("split")), error))
        return false;
    return !parser.isSet(QStringLiteral("service-version"))
        || faults->setVersion(parser.value(QStringLiteral("service-version")), error);
}

} // namespace

bool SimulatorOptions::parse(const QStringList& arguments, QString* error)
{
    QCommandLineParser parser;
    declareOptions(parser, *this);
    if (!parser.parse(arguments)) {
        *error = parser.errorText();
        return false;
    }
    if (parser.isSet(QStringLiteral("help")))
        parser.showHelp(0);
    if (!parser.positionalArguments().isEmpty()) {
        *error = QStringLiteral("Unexpected argument \"%1\"").arg(parser.positionalArguments().first());
        return false;
    }

    serverName = parser.value(QStringLiteral("name"));
    scenario = parser.value(QStringLiteral("scenario"));
    listScenarios = parser.isSet(QStringLiteral("list-scenarios"));
    quiet = parser.isSet(QStringLiteral("quiet"));
    int seedValue = 1;
    if (!readCount(parser, QStringLiteral("seed"), 0, &seedValue, error))
        return false;
    seed = static_cast<quint32>(seedValue);
    faults.seed = seed;
    return readTimings(parser, &timings, error) && readFaults(parser, &faults, error);
}

} // namespace Velmora::ServiceSim
