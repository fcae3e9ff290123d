#include "support/SupportTicket.h"

#include "logger/Logger.h"

#include <QTemporaryDir>

namespace Velmora::Support {

SupportTicket::SupportTicket(const QString& message, const QString& email, const QString& diskSerialNumber,
    const QString& captcha, QObject* parent)
    : QObject(parent)
    , m_directory(new QTemporaryDir)
{
    m_directory->setAutoRemove(true);
    m_request.setMessage(message);
    m_request.setEmail(email);
    m_request.setDiskSerialNumber(diskSerialNumber);
    m_request.setCaptcha(captcha);
    Logger::debug(QString(), QStringLiteral("New ticket created in: %1").arg(m_directory->path()));
}

SupportTicket::~SupportTicket()
{
    delete m_directory;
    Logger::debug(QString(), QStringLiteral("Ticket removed"));
}

QString SupportTicket::directoryPath() const
{
    return m_directory->path();
}

void SupportTicket::addFile(const QString& path)
{
    if (m_files.contains(path))
        return;
    m_files.append(path);
    Logger::debug(QString(), QStringLiteral("Support ticket file added: %1").arg(path));
}

} // namespace Velmora::Support
