#pragma once

#include "logger/Logger.h"

#include <benchmark/benchmark.h>

#include <QCoreApplication>
#include <QDir>

// The main() of every benchmark program: Qt around Google Benchmark, with a log of its own.
inline int runBenchmarks(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    // A log of its own, so that benchmark runs never rotate the program's log away.
    QCoreApplication::setOrganizationName(QStringLiteral("BRANTEL"));
    QCoreApplication::setApplicationName(QStringLiteral("KESTRAVIN_BENCH"));
    // Benchmark output goes to the console; the log lines still go to the file, which is what the
    // program pays for at Debug level besides its console.
    Velmora::Logger::setConsoleEnabled(false);

    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    // Empty when no benchmark of this run opened the log, and QDir("") is the working directory.
    const QString logs = Velmora::Logger::logDirectory();
    if (!logs.isEmpty())
        QDir(logs).removeRecursively();
    return 0;
}

#define KESTRAVIN_BENCHMARK_MAIN()                                                                     \
    int main(int argc, char** argv)                                                                    \
    {                                                                                                  \
        return runBenchmarks(argc, argv);                                                              \
    }
