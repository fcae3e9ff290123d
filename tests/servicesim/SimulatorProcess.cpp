#include "SimulatorProcess.h"

#include "support/TestEnvironment.h"

#include <QCoreApplication>
#include <QDebug>
#include <QTest>

SimulatorProcess::SimulatorProcess(const QStringList& arguments, const QString& name)
    : m_arguments(arguments)
    , m_name(name.isEmpty() ? TestEnvironment::uniqueName(QStringLiteral("servicesim")) : name)
{
}

SimulatorProcess::~SimulatorProcess()
{
    // What the service logged is the best clue to a failed test.
    if (QTest::currentTestFailed())
        qWarning().noquote() << "Log of the service" << m_name << ":\n" << output().right(6000);
    if (m_process.state() != QProcess::NotRunning) {
        m_process.kill();
        m_process.waitForFinished(3000);
    }
}

QString SimulatorProcess::executable()
{
    return QCoreApplication::applicationDirPath() + QStringLiteral("/Kestravin_Service");
}

QStringList SimulatorProcess::fastTimings()
{
    return {QStringLiteral("--task-ms"), QStringLiteral("5"), QStringLiteral("--benchmark-ms"), QStringLiteral("30"),
        QStringLiteral("--scan-step-ms"), QStringLiteral("10"), QStringLiteral("--scan-steps"), QStringLiteral("4"),
        QStringLiteral("--copy-step-ms"), QStringLiteral("10"), QStringLiteral("--copy-steps"), QStringLiteral("4"),
        QStringLiteral("--split-piece-ms"), QStringLiteral("1")};
}

bool SimulatorProcess::start(int timeoutMs)
{
    m_process.start(executable(), QStringList{QStringLiteral("--name"), m_name} + fastTimings() + m_arguments);
    if (m_process.waitForStarted(timeoutMs) && waitForOutput(QStringLiteral("Listening on"), timeoutMs))
        return true;
    qWarning().noquote() << "The service" << m_name << "did not come up: state" << m_process.state() << "exit code"
                         << m_process.exitCode() << "exit status" << m_process.exitStatus() << "error" << m_process.error()
                         << "\n" << output() << errorOutput();
    return false;
}

bool SimulatorProcess::runToEnd(int timeoutMs)
{
    m_process.start(executable(), QStringList{QStringLiteral("--name"), m_name} + fastTimings() + m_arguments);
    return m_process.waitForFinished(timeoutMs);
}

QString SimulatorProcess::output()
{
    m_output += QString::fromLocal8Bit(m_process.readAllStandardOutput());
    return m_output;
}

QString SimulatorProcess::errorOutput()
{
    return QString::fromLocal8Bit(m_process.readAllStandardError());
}

bool SimulatorProcess::waitForOutput(const QString& text, int timeoutMs)
{
    return QTest::qWaitFor([&] { return output().contains(text) || m_process.state() == QProcess::NotRunning; },
               timeoutMs)
        && output().contains(text);
}
