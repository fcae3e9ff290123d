#include "system/SupportedDrivesManager.h"

#include "communicationweb/SupportedDriveEntry.h"
#include "communicationweb/SupportedDrivesResponse.h"
#include "communicationweb/TarnAuthorizationService.h"
#include "logger/Logger.h"
#include "rest/RestResponse.h"
#include "system/Drive.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>
#include <QTextStream>
#include <QTimer>

namespace Velmora::System {

namespace {

const QString MakerWord = QStringLiteral("BRANTEL");

QString withoutBlanks(QString text)
{
    return text.remove(QLatin1Char(' '));
}

// Takes a field only as write() puts it: the canonical Base64 of a non-empty text. Anything else
// is damage, and a field that decodes to nothing (the text ends at a NUL) would match every drive.
bool decodeField(const QString& field, QString* text)
{
    const QByteArray bytes = QByteArray::fromBase64(field.toLatin1());
    if (QString::fromLatin1(bytes.toBase64()) != field)
        return false;
    *text = QString::fromUtf8(bytes);
    return !text->isEmpty();
}

} // namespace

SupportedDrivesManager* SupportedDrivesManager::s_instance = nullptr;

SupportedDrivesFile::SupportedDrivesFile(const QString& filePath)
    : m_filePath(filePath)
{
}

bool SupportedDrivesFile::write(const QList<SupportedDrive>& drives) const
{
    Logger::debug(QString(), QStringLiteral("Writing supported drives file..."));
    const QDir directory = QFileInfo(m_filePath).absoluteDir();
    if (!directory.exists()) {
        Logger::warning(QString(), QStringLiteral("Supported drives file directory does not exist and will be created"));
        if (!QDir().mkpath(directory.path()))
            Logger::error(QString(), QStringLiteral("Cannot create dir for supported drives file: %1").arg(directory.path()));
    }
    QFile file(m_filePath);
    if (!file.open(QIODevice::WriteOnly)) {
        Logger::error(QString(), QStringLiteral("Cannot write supported drives file: %1").arg(file.errorString()));
        return false;
    }
    QTextStream stream(&file);
    for (const SupportedDrive& drive : drives) {
        stream << drive.model().toUtf8().toBase64() << ',' << drive.firmware().toUtf8().toBase64() << ','
               << drive.smartType().toUtf8().toBase64() << '\n';
    }
    stream.flush();
    Logger::info(QString(), QStringLiteral("Successfully created supported drives file with %1 drives entries").arg(drives.size()));
    return true;
}

bool SupportedDrivesFile::read(QList<SupportedDrive>& drives) const
{
    Logger::debug(QString(), QStringLiteral("Reading supported drives file..."));
    QFile file(m_filePath);
    if (!file.open(QIODevice::ReadOnly)) {
        Logger::warning(QString(), QStringLiteral("Supported drives file doesn't exist"));
        return false;
    }
    drives.clear();
    QTextStream stream(&file);
    while (!stream.atEnd()) {
        // Empty parts are dropped, so a field that was written empty fails the line: the list
        // from the server is checked against what this reads back.
        const QStringList parts = stream.readLine().split(QLatin1Char(','), Qt::SkipEmptyParts);
        QString model;
        QString firmware;
        QString smartType;
        if (parts.size() != 3 || !decodeField(parts.at(0), &model) || !decodeField(parts.at(1), &firmware)
            || !decodeField(parts.at(2), &smartType)) {
            Logger::error(QString(), QStringLiteral("Supported drives file format errors detected"));
            return false;
        }
        drives.append(SupportedDrive(model, firmware, smartType));
    }
    Logger::info(QString(), QStringLiteral("Successfully read supported drives file with %1 drive entries").arg(drives.size()));
    return true;
}

SupportedDrivesManager::SupportedDrivesManager(QObject* parent)
    : CommunicationWeb::TarnWebHandler(nullptr, nullptr, parent)
    , m_file(QStandardPaths::writableLocation(QStandardPaths::AppDataLocation) + QStringLiteral("/drives/supported_drives"))
{
}

SupportedDrivesManager* SupportedDrivesManager::instance()
{
    if (!s_instance)
        s_instance = new SupportedDrivesManager;
    return s_instance;
}

void SupportedDrivesManager::release()
{
    delete s_instance;
    s_instance = nullptr;
}

void SupportedDrivesManager::initialize(REST::RestClient* restClient, CommunicationWeb::TarnAuthorizationService* authorizationService)
{
    SupportedDrivesManager* manager = instance();
    // The singleton exists before the shared client and service do; this also connects the
    // service's signals, once.
    manager->setWebServices(restClient, authorizationService);
    manager->setRetransmissionInterval(RetransmissionInterval);
    if (!manager->m_updateTimer) {
        manager->m_updateTimer = new QTimer(manager);
        manager->m_updateTimer->setInterval(UpdateInterval);
        connect(manager->m_updateTimer, &QTimer::timeout, manager, &SupportedDrivesManager::checkForUpdates);
    }
    // The cached list must be in force before the first drive is looked at.
    manager->loadSupportedDrives();
    QTimer::singleShot(0, manager, &SupportedDrivesManager::checkForUpdates);
}

void SupportedDrivesManager::setUpdateInterval(int milliseconds)
{
    if (m_updateTimer)
        m_updateTimer->setInterval(milliseconds);
}

void SupportedDrivesManager::loadSupportedDrives()
{
    if (m_file.read(m_supportedDrives))
        Logger::info(QString(), QStringLiteral("Successfully read supported drives list"));
    else
        Logger::error(QString(), QStringLiteral("Failed to read supported drives list"));
}

void SupportedDrivesManager::checkForUpdates()
{
    // A check that found no way through is replaced by this one rather than stacked.
    clearRetransmissionQueue();
    Logger::debug(QString(), QStringLiteral("Refreshing supported drives information"));
    sendRequest(REST::RestRequest(REST::GET, QStringLiteral("supported-models")));
    if (m_updateTimer)
        m_updateTimer->start();
}

bool SupportedDrivesManager::onRestResponseReceived(REST::RestResponse* response)
{
    if (TarnWebHandler::onRestResponseReceived(response)) {
        delete response;
        return true;
    }
    if (!response)
        return true;
    if (!response->isSuccessful()) {
        Logger::error(QString(), QStringLiteral("Server did not respond correctly to supported drives request: %1").arg(response->status()));
    } else {
        Logger::info(QString(), QStringLiteral("Drives support response received"));
        CommunicationWeb::SupportedDrivesResponse message;
        if (!message.fromJson(response->content())) {
            Logger::error(QString(), QStringLiteral("Unable to parse server supported drives response: %1").arg(response->content()));
        } else {
            QList<SupportedDrive> serverList;
            for (const CommunicationWeb::SupportedDriveEntry* entry : message.entries())
                serverList.append(SupportedDrive(entry->model(), entry->firmware(), entry->smartType()));
            processServerList(serverList);
        }
    }
    delete response;
    return true;
}

void SupportedDrivesManager::processServerList(const QList<SupportedDrive>& serverList)
{
    if (serverList == m_supportedDrives) {
        Logger::info(QString(), QStringLiteral("Supported drive list up to date, update not required"));
        return;
    }
    if (!m_file.write(serverList)) {
        Logger::error(QString(), QStringLiteral("Error while writing supported drive list to file"));
        return;
    }
    // What is in force is what the file gives back, so that the next start sees the same list.
    loadSupportedDrives();
    if (m_supportedDrives == serverList)
        Logger::info(QString(), QStringLiteral("Successfully updated supported drive list"));
    else
        Logger::error(QString(), QStringLiteral("Updated drives list and server drives list mismatch"));
}

QList<SupportedDrive> SupportedDrivesManager::matches(const Drive& drive) const
{
    // Drives report their model with blanks in places the list does not have them; the list's
    // own entries are taken as they are.
    const QString model = withoutBlanks(drive.model());
    const QString firmware = withoutBlanks(drive.firmwareVersion());
    QList<SupportedDrive> result;
    // A copy: the list may be replaced between two look-ups.
    const QList<SupportedDrive> list = m_supportedDrives;
    for (const SupportedDrive& entry : list) {
        if (model.contains(entry.model(), Qt::CaseInsensitive)
            && firmware.contains(entry.firmware(), Qt::CaseInsensitive))
            result.append(entry);
    }
    return result;
}

bool SupportedDrivesManager::isSupportedDrive(const Drive& drive)
{
    const QList<SupportedDrive> found = instance()->matches(drive);
    for (const SupportedDrive& entry : found) {
        Logger::info(QString(), QStringLiteral("Drive %1 is recognized as BRANTEL drive [SMART class %2]")
                                    .arg(drive.model(), entry.smartType()));
    }
    if (!found.isEmpty())
        return true;
    // Without a list, for instance at a first start with no network, the name is all there is.
    return withoutBlanks(drive.model()).contains(MakerWord, Qt::CaseInsensitive);
}

QString SupportedDrivesManager::smartType(const Drive& drive)
{
    QString type;
    const QList<SupportedDrive> found = instance()->matches(drive);
    for (const SupportedDrive& entry : found) {
        type = entry.smartType();
        Logger::debug(QString(), QStringLiteral("Smart type ") + type);
    }
    return type;
}

} // namespace Velmora::System
