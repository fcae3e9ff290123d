// Feeds arbitrary bytes to the program as its cached list of supported drives. The reader is
// strict, so a damaged cache is refused; what it does take must be written back as it was read.

#include "system/SupportedDrivesManager.h"

#include "logger/Logger.h"

#include <QCoreApplication>
#include <QFile>
#include <QTemporaryDir>

#include <cstddef>
#include <cstdint>
#include <cstdlib>

using namespace Velmora::System;

namespace {
QTemporaryDir* folder = nullptr;
} // namespace

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv)
{
    new QCoreApplication(*argc, *argv);
    Velmora::Logger::initialize(Velmora::Logger::Error);
    Velmora::Logger::setConsoleEnabled(false);
    folder = new QTemporaryDir;
    if (!folder->isValid())
        std::abort();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const SupportedDrivesFile cache(folder->filePath(QStringLiteral("drives.cache")));
    QFile file(cache.filePath());
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate))
        std::abort();
    file.write(reinterpret_cast<const char*>(data), static_cast<qint64>(size));
    file.close();
    QList<SupportedDrive> drives;
    if (!cache.read(drives))
        return 0;
    const SupportedDrivesFile copy(folder->filePath(QStringLiteral("copy.cache")));
    QList<SupportedDrive> again;
    if (!copy.write(drives) || !copy.read(again) || again != drives)
        std::abort();
    return 0;
}
