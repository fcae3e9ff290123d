#pragma once

#include "communication/Handler.h"

#include "FileTypeStructure.pb.h"
#include "SystemInfo.pb.h"
#include "SystemSummary.pb.h"

#include <QString>

namespace Velmora::System {

class Drive;
class System;

// Keeps the System in step with the service: asks for the drive list at every connection and on
// refresh, applies each answer as the complete truth, then reads the machine's summary. Also
// carries the TRIM and file-category traffic.
class SystemManager : public Communication::Handler
{
    Q_OBJECT

public:
    SystemManager(System* system, QObject* parent = nullptr);

    void clientConnected() override;
    void handleMessage(Velmora::Message::Message::MessageType type, QByteArray payload) override;

    virtual QString systemInfoJson();
    virtual QString systemReportJson();

public slots:
    void sendSystemInfoRequest();

private slots:
    void sendFileCategoriesStart(int driveId);
    void sendFileCategoriesReport(int driveId);
    void sendFileCategoriesStop(int driveId);
    void sendEnableTrimCommand();
    void updateSystemInfo();
    void requestSystemSummary();
    void updateSystemSummary();
    void updateFileCategories();

private:
    template <typename T>
    bool parse(T& message, const QByteArray& payload, const char* failure);
    void sendFileCategoriesAction(int driveId, Velmora::Message::FileTypeStructureRequest::ScanAction action,
        bool withFileTypes);
    void updateExistingDrive(Drive* drive, const Velmora::Message::SystemInfo::DriveInfo& info);
    void addNewDrive(const Velmora::Message::SystemInfo::DriveInfo& info);
    void addPartition(Drive* drive, const Velmora::Message::PartitionInfo& info);

    System* m_system;
    Velmora::Message::SystemInfo m_systemInfo;
    Velmora::Message::SystemSummary m_systemSummary;
    Velmora::Message::FileTypeStructure m_fileTypeStructure;
};

} // namespace Velmora::System
