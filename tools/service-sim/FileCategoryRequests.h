#pragma once

#include "RequestGroup.h"

#include <QHash>
#include <QMap>
#include <QPointer>

namespace Velmora::Message {
class FileTypeStructureRequest;
}

namespace Velmora::ServiceSim {

class SteppedTask;

// File-category scans: the service walks a drive's volumes and sums file sizes by the client's
// rules (paths, extensions), reporting as it goes. One scan per drive; a finished scan's result
// stays for later reports, a running one can be stopped.
class FileCategoryRequests : public RequestGroup
{
    Q_OBJECT

public:
    using RequestGroup::RequestGroup;

    QList<quint32> requestTypes() const override;
    bool handle(quint32 type, const QByteArray& payload, ClientConnection* client) override;
    bool fail(quint32 type, const QByteArray& payload, int code, ClientConnection* client) override;

private:
    struct Scan {
        QList<QPair<int, quint64>> files; // category and size of each file, in walk order
        QList<quint32> categories;        // those asked for, in the order asked
        int partitionId = -1;
        int stepsDone = 0;
        int steps = 1;
        bool finished = false;
        QPointer<SteppedTask> task;
    };

    void startScan(const Velmora::Message::FileTypeStructureRequest& request, ClientConnection* client);
    void stopScan(quint32 driveId);
    void report(quint32 driveId, ClientConnection* client) const;
    void reportGone(quint32 driveId, int partitionId, ClientConnection* client) const;
    QList<QPair<int, quint64>> walk(const Velmora::Message::FileTypeStructureRequest& request) const;

    QHash<quint32, Scan> m_scans;
};

} // namespace Velmora::ServiceSim
