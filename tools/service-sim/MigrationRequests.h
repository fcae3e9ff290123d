#pragma once

#include "RequestGroup.h"

#include <QPointer>

namespace Velmora::ServiceSim {

class FileCopyTask;

// The steps of a migration as the service carries them out on the destination drive: clean the
// disk, create and format partitions, copy a volume's files with progress, make the drive
// bootable. Each changes the machine, so that the next drive list shows the result.
class MigrationRequests : public RequestGroup
{
    Q_OBJECT

public:
    using RequestGroup::RequestGroup;

    QList<quint32> requestTypes() const override;
    bool handle(quint32 type, const QByteArray& payload, ClientConnection* client) override;
    bool fail(quint32 type, const QByteArray& payload, int code, ClientConnection* client) override;

private:
    bool cleanDisk(const QByteArray& payload, ClientConnection* client);
    bool createPartition(const QByteArray& payload, ClientConnection* client);
    bool formatPartition(const QByteArray& payload, ClientConnection* client);
    bool removePartition(const QByteArray& payload, ClientConnection* client);
    bool copyFiles(const QByteArray& payload, ClientConnection* client);
    void cancelCopy(ClientConnection* client);
    bool configureBoot(const QByteArray& payload, ClientConnection* client);

    // Why a new partition cannot go where it was asked to; empty when it can.
    QString placementProblem(const Machine::DriveInfo& drive, const Machine::PartitionInfo& wanted) const;

    // One copy runs at a time, as on the service.
    QPointer<FileCopyTask> m_copy;
};

} // namespace Velmora::ServiceSim
