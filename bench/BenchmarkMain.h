#pragma once

#include "gui/ApplicationFonts.h"
#include "logger/Logger.h"

#include <benchmark/benchmark.h>

#include <QApplication>
#include <QCoreApplication>
#include <QDir>

// The main() of every benchmark program: Qt around Google Benchmark, with a log of its own.
template <typename Application>
int runBenchmarks(int argc, char** argv)
{
    Application app(argc, argv);
    // A log of its own, so that benchmark runs never rotate the program's log away.
    QCoreApplication::setOrganizationName(QStringLiteral("BRANTEL"));
    QCoreApplication::setApplicationName(QStringLiteral("KESTRAVIN_BENCH"));
    // Benchmark output goes to the console; the log lines still go to the file, which is what the
    // program pays for at Debug level besides its console.
    Velmora::Logger::setConsoleEnabled(false);
    // Widgets shape their text in the program's own fonts, as in the program.
    if (qobject_cast<QApplication*>(&app))
        Velmora::Gui::registerApplicationFonts();

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
        return runBenchmarks<QCoreApplication>(argc, argv);                                            \
    }

// Benchmarks of widgets need a QApplication; without a display of their own choice they paint
// offscreen.
#define KESTRAVIN_WIDGET_BENCHMARK_MAIN()                                                              \
    int main(int argc, char** argv)                                                                    \
    {                                                                                                  \
        if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))                                            \
            qputenv("QT_QPA_PLATFORM", "offscreen");                                                   \
        return runBenchmarks<QApplication>(argc, argv);                                                \
    }
