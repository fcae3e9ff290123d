#pragma once

#include "ClientConnection.h"
#include "FilterRules.h"
#include "Machine.h"
#include "Timings.h"

#include "Migration.pb.h"

#include <QObject>
#include <QPointer>

namespace Velmora::ServiceSim {

class SteppedTask;

// The copy of one volume onto a partition of the destination drive. Reports the bytes copied as it
// goes; at the end the files that passed the filter land on the destination, and the files the
// scenario calls faulted are named. Deletes itself when it ends.
class FileCopyTask : public QObject
{
    Q_OBJECT

public:
    FileCopyTask(Machine& machine, const Timings& timings, const Velmora::Message::FileCopyRequest& request,
        ClientConnection* client, QObject* parent = nullptr);

    void start();
    // Stops the copy and confirms it to `client` with code 2.
    void cancel(ClientConnection* client);

private:
    void step(int step, int steps);
    void finish();
    void end();
    QString fullPath(const QString& path) const { return m_letter + QLatin1Char('\\') + path; }

    Machine& m_machine;
    const Timings& m_timings;
    const Velmora::Message::FileCopyRequest m_request;
    const FilterRules m_rules;
    QPointer<ClientConnection> m_client;
    QPointer<SteppedTask> m_steps;
    QString m_letter;      // of the source volume
    quint64 m_total = 0;   // bytes that pass the filter
    quint64 m_files = 0;
    quint64 m_room = 0;    // free bytes of the destination partition
    quint64 m_copied = 0;
};

} // namespace Velmora::ServiceSim
