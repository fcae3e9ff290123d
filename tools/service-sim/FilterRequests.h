#pragma once

#include "RequestGroup.h"

#include <QHash>
#include <QPointer>

namespace Velmora::Message {
class FileTypeStructure;
class FileTypeStructureRequest;
}

namespace Velmora::ServiceSim {

class SteppedTask;

// What the migration filters ask of the service: directory listings of a volume, the paths a
// migration must take along or leave behind, and how much of a volume remains under its filters.
class FilterRequests : public RequestGroup
{
    Q_OBJECT

public:
    using RequestGroup::RequestGroup;

    QList<quint32> requestTypes() const override;
    bool handle(quint32 type, const QByteArray& payload, ClientConnection* client) override;
    bool fail(quint32 type, const QByteArray& payload, int code, ClientConnection* client) override;

private:
    bool listDirectory(const QByteArray& payload, ClientConnection* client);
    bool answerSystemPaths(const QByteArray& payload, ClientConnection* client);
    bool calculateFilteredSize(const QByteArray& payload, ClientConnection* client);
    void stopCalculations();
    // Each file of the volume with the sum it falls in: system, left out or kept.
    QList<QPair<int, quint64>> sortFiles(const Velmora::Message::FileTypeStructureRequest& request,
        const Machine::PartitionInfo& partition) const;
    // The three sums once `step` of `steps` parts of the files are walked.
    static Velmora::Message::FileTypeStructure sizesAfter(const QList<QPair<int, quint64>>& files, int step, int steps,
        quint32 driveId, int partitionId);

    // One calculation per source partition; a stop ends them all.
    QHash<int, QPointer<SteppedTask>> m_calculations;
};

} // namespace Velmora::ServiceSim
