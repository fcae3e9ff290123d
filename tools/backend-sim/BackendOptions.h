#pragma once

#include "FaultSwitches.h"

#include <QList>
#include <QString>
#include <QStringList>

namespace Velmora::BackendSim {

// The command line of the simulated back-end.
struct BackendOptions {
    QString host = QStringLiteral("127.0.0.1");
    int port = 8443; // 0: any free port, printed on the ready line
    QString certificate;
    QString privateKey;
    QString sharedKey = QStringLiteral("Qx7mTzR4kP");
    int sessionLifetimeSeconds = 0;
    QString catalogue = QStringLiteral(":/backend/catalogue.json");
    QString applicationVersion = QStringLiteral("1.1.5");
    QString installer;  // empty: a generated stand-in
    QString adPicture;  // empty: a generated picture
    QString adLink;     // empty: a page of this server
    bool offerAd = true;
    QString captchaText; // empty: random text for every picture
    QList<FaultRule> faults;
    bool quiet = false;

    // Reads the arguments; on a mistake returns false with the reason in `error`. `--help`
    // returns false with the usage text and `helpShown` set.
    bool parse(const QStringList& arguments, QString* error, bool* helpShown);
};

} // namespace Velmora::BackendSim
