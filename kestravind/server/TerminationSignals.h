#pragma once

#include <QObject>

class QSocketNotifier;

namespace Velmora::Daemon {

// Turns SIGTERM and SIGINT into a signal on the event loop, so that the service closes its socket
// and stops its requests instead of dying in the middle of them. The handler only writes a byte
// into a pipe, which is all a signal handler may safely do.
class TerminationSignals : public QObject
{
    Q_OBJECT

public:
    explicit TerminationSignals(QObject* parent = nullptr);
    // False when the pipe or the handlers cannot be set up.
    bool install();

signals:
    void terminationRequested(int signalNumber);

private:
    QSocketNotifier* m_notifier = nullptr;
};

} // namespace Velmora::Daemon
