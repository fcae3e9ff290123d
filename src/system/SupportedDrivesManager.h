#pragma once

#include "communicationweb/TarnWebHandler.h"

#include <QList>
#include <QObject>
#include <QString>

class QTimer;

namespace Velmora::System {

class Drive;

// One line of the maker's list of supported drives: a model and firmware pattern and the SMART
// class those drives speak.
class SupportedDrive
{
public:
    SupportedDrive() = default;
    SupportedDrive(const QString& model, const QString& firmware, const QString& smartType)
        : m_model(model)
        , m_firmware(firmware)
        , m_smartType(smartType)
    {
    }

    QString model() const { return m_model; }
    QString firmware() const { return m_firmware; }
    QString smartType() const { return m_smartType; }

    bool operator==(const SupportedDrive& other) const
    {
        return m_model == other.m_model && m_firmware == other.m_firmware && m_smartType == other.m_smartType;
    }
    bool operator!=(const SupportedDrive& other) const { return !(*this == other); }

private:
    QString m_model;
    QString m_firmware;
    QString m_smartType;
};

// The local cache of the list: one line a drive, each field Base64 of its UTF-8 text, separated
// by commas. The reader is strict: a line without exactly three non-empty fields ends the reading.
class SupportedDrivesFile
{
public:
    explicit SupportedDrivesFile(const QString& filePath);

    QString filePath() const { return m_filePath; }
    // Clears `drives` once the file is open; on a format error the entries read so far stay.
    bool read(QList<SupportedDrive>& drives) const;
    bool write(const QList<SupportedDrive>& drives) const;

private:
    QString m_filePath;
};

// Decides which drives are the maker's own and which SMART dialect each speaks. The list holds no
// models of the program's own: it comes from the back-end, is cached in a file and refreshed every
// hour; without it only the maker's word in the model name recognises a drive.
class SupportedDrivesManager : public CommunicationWeb::TarnWebHandler
{
    Q_OBJECT

public:
    static constexpr int UpdateInterval = 3600000;
    static constexpr int RetransmissionInterval = 60000;

    static SupportedDrivesManager* instance();
    // Wires the singleton to the shared client and service, loads the cache and asks the back-end
    // at the next turn of the event loop.
    static void initialize(REST::RestClient* restClient, CommunicationWeb::TarnAuthorizationService* authorizationService);
    static void release();

    static bool isSupportedDrive(const Drive& drive);
    static QString smartType(const Drive& drive);

    QList<SupportedDrive> supportedDrives() const { return m_supportedDrives; }
    void setSupportedDrives(const QList<SupportedDrive>& drives) { m_supportedDrives = drives; }
    QString filePath() const { return m_file.filePath(); }

    // Null until initialize().
    QTimer* updateTimer() const { return m_updateTimer; }
    void setUpdateInterval(int milliseconds);

public slots:
    void checkForUpdates();

private slots:
    bool onRestResponseReceived(REST::RestResponse* response) override;
    void loadSupportedDrives();

private:
    explicit SupportedDrivesManager(QObject* parent = nullptr);

    // The entries that match a drive, in list order.
    QList<SupportedDrive> matches(const Drive& drive) const;
    void processServerList(const QList<SupportedDrive>& serverList);

    QList<SupportedDrive> m_supportedDrives;
    SupportedDrivesFile m_file;
    QTimer* m_updateTimer = nullptr;

    static SupportedDrivesManager* s_instance;
};

} // namespace Velmora::System
