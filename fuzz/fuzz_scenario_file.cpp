// Feeds arbitrary bytes to the simulated service as a scenario file. A bad scenario must be refused
// with a reason, never crash the service or take time out of proportion to its size.

#include "FaultPlan.h"
#include "Machine.h"
#include "ScenarioLoader.h"
#include "logger/Logger.h"

#include <QCoreApplication>
#include <QFile>
#include <QTemporaryDir>

#include <cstddef>
#include <cstdint>
#include <cstdlib>

using namespace Velmora;
using namespace Velmora::ServiceSim;

namespace {
QTemporaryDir* folder = nullptr;
} // namespace

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv)
{
    new QCoreApplication(*argc, *argv);
    Logger::initialize(Logger::Error);
    Logger::setConsoleEnabled(false);
    folder = new QTemporaryDir;
    if (!folder->isValid())
        std::abort();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const QString path = folder->filePath(QStringLiteral("scenario.json"));
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate))
        std::abort();
    file.write(reinterpret_cast<const char*>(data), static_cast<qint64>(size));
    file.close();
    Machine machine;
    FaultPlan faults;
    QString error;
    // A refusal always says why.
    if (!ScenarioLoader::load(path, &machine, &faults, &error) && error.isEmpty())
        std::abort();
    return 0;
}
