// Kestravin_Backend: the simulated web back-end. A real HTTPS server on loopback that answers
// the program's web calls, for development, the end-to-end tests and the demo. Nothing in src/
// depends on it.

#include "BackendOptions.h"
#include "BackendServer.h"
#include "Log.h"

#include <QCoreApplication>

#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <thread>

using namespace Velmora::BackendSim;

int main(int argc, char* argv[])
{
    // The server's workers inherit this mask, so that SIGINT and SIGTERM reach the main thread
    // only, where sigwait() takes them and the server is stopped in an orderly way. A dropped
    // connection must not kill the process when the library writes to it afterwards.
    sigset_t stopSignals;
    sigemptyset(&stopSignals);
    sigaddset(&stopSignals, SIGINT);
    sigaddset(&stopSignals, SIGTERM);
    pthread_sigmask(SIG_BLOCK, &stopSignals, nullptr);
    std::signal(SIGPIPE, SIG_IGN);

    QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("Kestravin_Backend"));

    BackendOptions options;
    QString error;
    bool helpShown = false;
    if (!options.parse(QCoreApplication::arguments(), &error, &helpShown)) {
        fprintf(helpShown ? stdout : stderr, "%s\n", qPrintable(error));
        return helpShown ? 0 : 2;
    }
    Log::setQuiet(options.quiet);

    BackendServer server(options);
    if (!server.start(&error)) {
        Log::warning(error);
        return 1;
    }

    std::atomic<bool> served{false};
    std::thread serving([&server, &served] {
        server.run();
        served = true;
    });
    // Tests and scripts wait for this line, which also tells the port picked for --port 0.
    fprintf(stdout, "Kestravin_Backend listening on %s\n", qPrintable(server.apiAddress()));
    fflush(stdout);

    int received = 0;
    sigwait(&stopSignals, &received);
    Log::info(QStringLiteral("signal %1: stopping").arg(received));
    server.stop();
    // Workers wait out their idle keep-alive connections before the server returns; nothing of
    // value is lost by not waiting for them.
    for (int waited = 0; !served && waited < 50; ++waited)
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    if (!served) {
        Log::info(QStringLiteral("idle connections left open"));
        std::_Exit(0);
    }
    serving.join();
    return 0;
}
