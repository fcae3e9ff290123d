#include "TerminationSignals.h"

#include <QSocketNotifier>

#include <fcntl.h>
#include <signal.h>
#include <unistd.h>

namespace Velmora::Daemon {

namespace {

int signalPipe[2] = {-1, -1};

void onSignal(int number)
{
    const unsigned char byte = static_cast<unsigned char>(number);
    // Nothing to do if the pipe is full: a termination is already on its way.
    [[maybe_unused]] const ssize_t written = write(signalPipe[1], &byte, 1);
}

} // namespace

TerminationSignals::TerminationSignals(QObject* parent)
    : QObject(parent)
{
}

bool TerminationSignals::install()
{
    if (pipe2(signalPipe, O_CLOEXEC | O_NONBLOCK) != 0)
        return false;
    m_notifier = new QSocketNotifier(signalPipe[0], QSocketNotifier::Read, this);
    connect(m_notifier, &QSocketNotifier::activated, this, [this] {
        unsigned char byte = 0;
        if (read(signalPipe[0], &byte, 1) == 1)
            emit terminationRequested(byte);
    });
    struct sigaction action {};
    action.sa_handler = onSignal;
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_RESTART;
    return sigaction(SIGTERM, &action, nullptr) == 0 && sigaction(SIGINT, &action, nullptr) == 0;
}

} // namespace Velmora::Daemon
