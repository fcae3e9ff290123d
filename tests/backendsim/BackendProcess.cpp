#include "BackendProcess.h"

#include <QDeadlineTimer>
#include <QRegularExpression>

BackendProcess::BackendProcess(const QString& certificateDirectory, const QStringList& arguments)
    : m_certificateDirectory(certificateDirectory)
    , m_arguments(arguments)
{
}

BackendProcess::~BackendProcess()
{
    if (m_process.state() != QProcess::NotRunning) {
        m_process.terminate();
        if (!m_process.waitForFinished(5000)) {
            m_process.kill();
            m_process.waitForFinished(2000);
        }
    }
}

bool BackendProcess::makeCertificates(const QString& directory, QString* error)
{
    QProcess script;
    script.setProcessChannelMode(QProcess::MergedChannels);
    script.start(QStringLiteral(KESTRAVIN_BACKEND_SOURCE_DIR "/make-certificates.sh"), {directory});
    if (!script.waitForFinished(20000) || script.exitStatus() != QProcess::NormalExit || script.exitCode() != 0) {
        *error = QString::fromLocal8Bit(script.readAll()) + script.errorString();
        return false;
    }
    return true;
}

QString BackendProcess::executable()
{
    return QStringLiteral(KESTRAVIN_BACKEND_EXECUTABLE);
}

bool BackendProcess::start(int timeoutMs)
{
    QStringList arguments{QStringLiteral("--port"), QStringLiteral("0"),
                          QStringLiteral("--certificate"), m_certificateDirectory + QStringLiteral("/server.pem"),
                          QStringLiteral("--key"), m_certificateDirectory + QStringLiteral("/server.key")};
    arguments += m_arguments;
    m_process.start(executable(), arguments);
    if (!m_process.waitForStarted(timeoutMs))
        return false;

    static const QRegularExpression ready(QStringLiteral("listening on https://127\\.0\\.0\\.1:(\\d+)/"));
    QByteArray output;
    const QDeadlineTimer deadline(timeoutMs);
    while (!deadline.hasExpired() && m_process.state() == QProcess::Running) {
        if (m_process.canReadLine() || m_process.waitForReadyRead(int(deadline.remainingTime()))) {
            output += m_process.readAllStandardOutput();
            const auto match = ready.match(QString::fromUtf8(output));
            if (match.hasMatch()) {
                m_port = match.captured(1).toInt();
                return true;
            }
        }
    }
    return false;
}

int BackendProcess::runToEnd(int timeoutMs)
{
    m_process.start(executable(), m_arguments);
    if (!m_process.waitForFinished(timeoutMs) || m_process.exitStatus() != QProcess::NormalExit)
        return -1;
    return m_process.exitCode();
}

QUrl BackendProcess::api(const QString& path) const
{
    return QUrl(QStringLiteral("https://127.0.0.1:%1/kestravin/public/api/%2").arg(m_port).arg(path));
}

QUrl BackendProcess::admin(const QString& path) const
{
    return QUrl(QStringLiteral("https://127.0.0.1:%1/admin/%2").arg(m_port).arg(path));
}

QString BackendProcess::log()
{
    m_log += QString::fromUtf8(m_process.readAllStandardError());
    return m_log;
}
