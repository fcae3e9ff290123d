#pragma once

#include <QString>

#include <functional>

// The program's log: every line goes to standard output with ANSI colours and, without them, to a
// size-rotated file in the per-user data folder. Safe from any thread.
namespace Velmora::Logger {

enum Level { Trace = 0, Debug = 1, Info = 2, Warning = 3, Error = 4 };

// Opens the live log file. Returns 0 on success and -1 when the log is open already; a log file
// that cannot be opened ends the process with exit(1).
int initialize(int level);
void setLevel(int level);

// True when a call at `level` would be written; lets hot paths skip composing texts nobody reads.
bool isEnabled(int level);

QString logFileBaseName();
QString logDirectory();

void trace(const QString& tag, const QString& message);
void debug(const QString& tag, const QString& message);
void info(const QString& tag, const QString& message);
void warning(const QString& tag, const QString& message);
void error(const QString& tag, const QString& message);

// Seam for tests and tools: each console line (colours included, no line end) is handed to the
// hook after it was written. An empty function removes the hook.
using LineHook = std::function<void(const QString& line)>;
void setLineHook(LineHook hook);

// Seam for tests and benchmarks: with false, lines still go to the file and the hook but not to
// standard output. The program never changes it.
void setConsoleEnabled(bool enabled);

// Closes the log file, so that tests can start again from a clean state.
void shutdown();

} // namespace Velmora::Logger
