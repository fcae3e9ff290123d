#include "DaemonOptions.h"

#include "message/Message.h"

#include <QCommandLineParser>

namespace Velmora::Daemon {

const char* const DaemonOptions::DefaultSocket = Velmora::Message::Message::SystemSocket;

bool DaemonOptions::parse(const QStringList& arguments, QString* error)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Kestravin service: answers the program about this machine's drives."));
    parser.addHelpOption();
    parser.addVersionOption();
    parser.addOptions({
        {QStringLiteral("socket"), QStringLiteral("Listen on this socket, in the foreground."), QStringLiteral("path"),
            socketPath},
        {QStringLiteral("group"), QStringLiteral("Members of this group may run speed tests and change settings, "
                                                 "as root may. A group that does not exist means root only."),
            QStringLiteral("name"), group},
        {QStringLiteral("max-unsent"), QStringLiteral("Close a client that leaves more KiB of answers unread."),
            QStringLiteral("KiB"), QString::number(limits.maxUnsentBytes / 1024)},
        {QStringLiteral("log-dir"), QStringLiteral("Also write the log to kestravind.log in this folder."),
            QStringLiteral("folder")},
        {QStringLiteral("include-loop"), QStringLiteral("Show loop devices as drives (for tests and demonstrations).")},
    });
    if (!parser.parse(arguments)) {
        *error = parser.errorText();
        return false;
    }
    if (parser.isSet(QStringLiteral("help")))
        parser.showHelp(0);
    if (parser.isSet(QStringLiteral("version")))
        parser.showVersion();
    if (!parser.positionalArguments().isEmpty()) {
        *error = QStringLiteral("Unexpected argument \"%1\"").arg(parser.positionalArguments().first());
        return false;
    }
    socketPath = parser.value(QStringLiteral("socket"));
    group = parser.value(QStringLiteral("group"));
    includeLoop = parser.isSet(QStringLiteral("include-loop"));
    logDirectory = parser.value(QStringLiteral("log-dir"));
    bool ok = false;
    const qint64 unsentKiB = parser.value(QStringLiteral("max-unsent")).toLongLong(&ok);
    if (!ok || unsentKiB < 1) {
        *error = QStringLiteral("--max-unsent needs a whole number of at least 1");
        return false;
    }
    limits.maxUnsentBytes = unsentKiB * 1024;
    return true;
}

} // namespace Velmora::Daemon
