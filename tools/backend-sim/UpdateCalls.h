#pragma once

#include "Exchange.h"

#include <QByteArray>
#include <QString>

#include <mutex>

namespace Velmora::BackendSim {

struct BackendOptions;

// GET "application" offers the newest version and its installer; GET "ad" offers a picture
// and a link. Both point at files that this server itself serves under "files/", because the
// program downloads them without a session and without following redirects.
class UpdateCalls {
public:
    // Reads the installer and picture files named by the options; false with the reason if one
    // can't be read.
    bool configure(const BackendOptions& options, QString* error);
    void addRoutes(Router& router);

private:
    struct ServedFile {
        QByteArray bytes;
        const char* contentType = "application/octet-stream";
    };

    void application(Exchange& exchange);
    void advertisement(Exchange& exchange);
    void file(Exchange& exchange);
    void offerPage(Exchange& exchange);
    void changeApplication(Exchange& exchange);
    void changeAdvertisement(Exchange& exchange);

    // Callers hold m_mutex.
    QString installerName() const;
    QString adName() const;
    bool lookUp(const QString& name, ServedFile* file) const;

    mutable std::mutex m_mutex;
    QString m_version;
    QString m_installerName; // empty: the stand-in, named after the version
    QByteArray m_installer;
    QString m_adPictureName; // empty: the generated picture of m_adVariant
    QByteArray m_adPicture;
    int m_adVariant = 1;
    bool m_offerAd = true;
    QString m_adLink;
};

} // namespace Velmora::BackendSim
