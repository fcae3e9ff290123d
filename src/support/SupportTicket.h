#pragma once

#include "communicationweb/SupportRequest.h"

#include <QObject>
#include <QString>
#include <QStringList>

class QTemporaryDir;

namespace Velmora::Support {

// One ticket: what the user wrote, and a temporary folder for the files that go with it. The
// folder and all in it vanish with the ticket.
class SupportTicket : public QObject
{
    Q_OBJECT

public:
    SupportTicket(const QString& message, const QString& email, const QString& diskSerialNumber, const QString& captcha,
        QObject* parent = nullptr);
    ~SupportTicket() override;

    QString directoryPath() const;
    CommunicationWeb::SupportRequest& request() { return m_request; }
    // Files to attach, each once, in the order added.
    QStringList files() const { return m_files; }
    void addFile(const QString& path);

private:
    QTemporaryDir* m_directory;
    CommunicationWeb::SupportRequest m_request;
    QStringList m_files;
};

} // namespace Velmora::Support
