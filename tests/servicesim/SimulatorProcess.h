#pragma once

#include <QProcess>
#include <QString>
#include <QStringList>

// The real simulated service, started for one test on a pipe name of its own, with short timings.
// It is killed when the object goes.
class SimulatorProcess
{
public:
    explicit SimulatorProcess(const QStringList& arguments = {}, const QString& name = QString());
    ~SimulatorProcess();

    static QString executable();
    // Timings that keep a test short; a test's own arguments come after them and win.
    static QStringList fastTimings();

    // Starts the process and waits until it listens. False if it ends or stays silent instead.
    bool start(int timeoutMs = 10000);
    // Starts the process and waits for it to end, for runs that must not come up.
    bool runToEnd(int timeoutMs = 10000);

    QString name() const { return m_name; }
    QProcess& process() { return m_process; }
    bool isRunning() const { return m_process.state() == QProcess::Running; }

    // Everything the process wrote to standard output so far (its log, with colour codes).
    QString output();
    QString errorOutput();
    bool waitForOutput(const QString& text, int timeoutMs = 5000);

private:
    QStringList m_arguments;
    QString m_name;
    QProcess m_process;
    QString m_output;
};
