#include "ads/AdsManager.h"

#include "communicationweb/AdAvabilityResponse.h"
#include "download/DownloadFile.h"
#include "download/DownloadManager.h"
#include "logger/Logger.h"
#include "rest/RestResponse.h"
#include "settings/SettingsManager.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QImageReader>
#include <QStandardPaths>
#include <QTimer>

namespace Velmora::Ads {

namespace {
// "*.png", "*.gif", "*.jpg" and "*.jpeg" in either case, as a listing's name filters would match
// them: a filter is a pattern compiled for each listing, which costs more than the start-up
// should spend on a folder that is mostly empty.
bool isPictureName(const QString& fileName)
{
    for (const char* suffix : {".png", ".gif", ".jpg", ".jpeg"}) {
        if (fileName.endsWith(QLatin1String(suffix), Qt::CaseInsensitive))
            return true;
    }
    return false;
}

const QString SettingsGroup = QStringLiteral("Application");
const QString SignatureKey = QStringLiteral("AdvSigMD5");
const QString CounterKey = QStringLiteral("AdvShowCounter");
const QString TresholdKey = QStringLiteral("AdvShowTreshold");

// Below this the picture is shown at every start; from it on the wait doubles.
constexpr int ShowAlwaysUpTo = 2;

// The advertisement view shows still pictures of these types and GIF animations, and nothing else.
bool isShowable(const QString& path, QString* reason)
{
    static const QStringList types{QStringLiteral("png"), QStringLiteral("jpg"), QStringLiteral("jpeg"),
        QStringLiteral("gif")};
    if (!types.contains(QFileInfo(path).completeSuffix().toLower())) {
        *reason = QStringLiteral("unsupported type");
        return false;
    }
    // A header that promises a picture is not enough: its first frame must decode.
    QImageReader reader(path);
    if (reader.read().isNull()) {
        *reason = reader.errorString();
        return false;
    }
    return true;
}

} // namespace

AdsManager::AdsManager(REST::RestClient* restClient, CommunicationWeb::TarnAuthorizationService* authorizationService,
    Download::DownloadManager* downloadManager, QObject* parent, int firstCheckDelay)
    : TarnWebHandler(restClient, authorizationService, parent)
    , m_adsDirectory(QStandardPaths::writableLocation(QStandardPaths::AppDataLocation) + QStringLiteral("/ads"))
    , m_downloadManager(downloadManager)
{
    m_downloadManager->addHandler(this);
    removeOldFiles();
    QTimer::singleShot(firstCheckDelay, this, &AdsManager::checkAvailability);
    setRetransmissionInterval(RetransmissionInterval);
}

void AdsManager::removeOldFiles()
{
    QDir directory(m_adsDirectory);
    if (!directory.exists())
        directory.mkpath(QStringLiteral("."));
    const QFileInfoList files = directory.entryInfoList(QDir::Files);
    for (const QFileInfo& file : files) {
        if (!isPictureName(file.fileName()))
            continue;
        Logger::debug(QString(), QStringLiteral("Removing old ad file: ") + file.filePath());
        QFile::remove(file.filePath());
    }
}

void AdsManager::checkAvailability()
{
    Logger::info(QString(), QStringLiteral("Checking advertisements availability"));
    sendRequest(REST::RestRequest(REST::GET, QStringLiteral("ad")));
}

bool AdsManager::onRestResponseReceived(REST::RestResponse* response)
{
    if (TarnWebHandler::onRestResponseReceived(response)) {
        delete response;
        return true;
    }
    if (response)
        readAnswer(*response);
    delete response;
    return true;
}

void AdsManager::readAnswer(const REST::RestResponse& response)
{
    if (response.error() != QNetworkReply::NoError) {
        Logger::error(QString(),
            QStringLiteral("Server did not respond correctly to ad avability check request: %1").arg(response.status()));
        return;
    }
    Logger::info(QString(), QStringLiteral("Got new advertisement"));
    CommunicationWeb::AdAvabilityResponse answer;
    if (!answer.fromJson(response.content())) {
        Logger::error(QString(), QStringLiteral("Unable to parse ad avability response: %1").arg(response.content()));
        return;
    }
    Logger::info(QString(), QStringLiteral("Ad avability message status: %1 [%2]").arg(answer.file(), answer.link()));
    m_adLink = QUrl(answer.link());
    if (answer.file().isEmpty()) {
        Logger::error(QString(), QStringLiteral("Error downloading ad, url is empty"));
        return;
    }
    Logger::info(QString(), QStringLiteral("Downloading ad file to: %1").arg(m_adsDirectory));
    m_downloadManager->addDownload(new Download::AdvertisementFile(answer.file(), m_adsDirectory));
}

void AdsManager::onFileDownloaded(Download::DownloadFile* file)
{
    if (!dynamic_cast<Download::AdvertisementFile*>(file)) {
        delete file;
        return;
    }
    Logger::info(QString(), QStringLiteral("Ad downloaded"));
    Logger::info(QString(), QStringLiteral("Opening ad: %1").arg(file->path()));
    // A picture that cannot be shown neither appears nor counts as a showing.
    QString reason;
    if (!isShowable(file->path(), &reason)) {
        Logger::warning(QString(), QStringLiteral("Advertisement %1 cannot be shown: %2").arg(file->path(), reason));
        delete file;
        return;
    }
    QFile picture(file->path());
    QCryptographicHash md5(QCryptographicHash::Md5);
    if (picture.open(QIODevice::ReadOnly))
        md5.addData(&picture);
    if (advanceBackOff(QString::fromLatin1(md5.result().toHex())))
        emit newAdAvailable(file->path(), m_adLink);
    delete file;
}

bool AdsManager::advanceBackOff(const QString& signature)
{
    if (signature != LoadLastAdvSig()) {
        SaveLastAdvSig(signature);
        SaveAdvCounters(0, 0);
    }
    int counter = 0;
    int treshold = 0;
    LoadAdvCounters(&counter, &treshold);
    if (treshold <= ShowAlwaysUpTo || counter == treshold) {
        treshold = treshold <= ShowAlwaysUpTo ? treshold + 1 : treshold * 2;
        SaveAdvCounters(0, treshold);
        return true;
    }
    SaveAdvCounters(counter + 1, treshold);
    return false;
}

void AdsManager::onFileDownloadFailed(Download::DownloadFile* file)
{
    if (dynamic_cast<Download::AdvertisementFile*>(file))
        Logger::warning(QString(), QStringLiteral("Failed to download ad: %1").arg(file->path()));
    delete file;
}

QString AdsManager::LoadLastAdvSig()
{
    return Settings::SettingsManager::value(SettingsGroup, SignatureKey, QString()).toString();
}

void AdsManager::SaveLastAdvSig(QString signature)
{
    Settings::SettingsManager::setValue(SettingsGroup, SignatureKey, signature);
}

void AdsManager::LoadAdvCounters(int* counter, int* treshold)
{
    *counter = Settings::SettingsManager::value(SettingsGroup, CounterKey, 0).toInt();
    *treshold = Settings::SettingsManager::value(SettingsGroup, TresholdKey, 0).toInt();
}

void AdsManager::SaveAdvCounters(int counter, int treshold)
{
    Settings::SettingsManager::setValue(SettingsGroup, CounterKey, counter);
    Settings::SettingsManager::setValue(SettingsGroup, TresholdKey, treshold);
}

} // namespace Velmora::Ads
