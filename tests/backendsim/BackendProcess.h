#pragma once

#include <QProcess>
#include <QString>
#include <QStringList>
#include <QUrl>

// The real Kestravin_Backend, started for a test on a free port with certificates of the test's
// own, made by the tool's script. It is stopped when the object goes.
class BackendProcess
{
public:
    // Runs make-certificates.sh into `directory`; false (with the script's output in `error`)
    // if it fails.
    static bool makeCertificates(const QString& directory, QString* error);
    static QString executable();

    BackendProcess(const QString& certificateDirectory, const QStringList& arguments = {});
    ~BackendProcess();

    // Starts the process and waits for its ready line. False if it ends or stays silent instead.
    bool start(int timeoutMs = 10000);
    // Starts the process and waits for it to end, for command lines that must be refused.
    int runToEnd(int timeoutMs = 10000);

    // An address of the API ("firmware" gives ".../kestravin/public/api/firmware").
    QUrl api(const QString& path) const;
    // An address of the test hooks ("faults" gives "https://127.0.0.1:port/admin/faults").
    QUrl admin(const QString& path) const;
    int port() const { return m_port; }

    // What the server logged on standard error so far.
    QString log();

private:
    QString m_certificateDirectory;
    QStringList m_arguments;
    QProcess m_process;
    QString m_log;
    int m_port = 0;
};
