#pragma once

#include "RequestGroup.h"

#include <QRandomGenerator>

namespace Velmora::ServiceSim {

// The speed test: one round writes and reads a file on the drive and reports both speeds.
class BenchmarkRequests : public RequestGroup
{
    Q_OBJECT

public:
    BenchmarkRequests(Machine& machine, const Timings& timings, quint32 seed, QObject* parent = nullptr);

    QList<quint32> requestTypes() const override;
    bool handle(quint32 type, const QByteArray& payload, ClientConnection* client) override;
    bool fail(quint32 type, const QByteArray& payload, int code, ClientConnection* client) override;

private:
    // The drive's sequential speeds in bytes per second: the scenario's, or typical ones of its kind.
    void nominalSpeeds(quint32 driveId, double* read, double* write);
    double jitter(double value);

    QRandomGenerator m_random;
};

} // namespace Velmora::ServiceSim
