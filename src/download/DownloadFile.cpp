#include "download/DownloadFile.h"

namespace Download {

DownloadFile::DownloadFile(const QString& url, const QString& path)
    : m_url(QUrl::fromEncoded(url.toLocal8Bit()))
    , m_path(path)
{
}

DownloadFile::~DownloadFile() = default;

DownloadFile* DownloadFile::clone() const
{
    return new DownloadFile(*this);
}

DownloadFile* InstallerFile::clone() const
{
    return new InstallerFile(*this);
}

DownloadFile* CaptchaFile::clone() const
{
    return new CaptchaFile(*this);
}

DownloadFile* AdvertisementFile::clone() const
{
    return new AdvertisementFile(*this);
}

} // namespace Download
