#pragma once

#include <QString>
#include <QUrl>

namespace Download {

// A file to fetch: where from, and the directory to put it in. From the start of its download on,
// `path` holds the full path of the file written. Customers tell their own files by their class.
class DownloadFile
{
public:
    // `url` is taken as encoded text.
    DownloadFile(const QString& url, const QString& path);
    virtual ~DownloadFile();
    virtual DownloadFile* clone() const;

    QUrl url() const { return m_url; }
    QString path() const { return m_path; }
    void setPath(const QString& path) { m_path = path; }

protected:
    DownloadFile(const DownloadFile& other) = default;

private:
    QUrl m_url;
    QString m_path;
};

// The application installer.
class InstallerFile : public DownloadFile
{
public:
    using DownloadFile::DownloadFile;
    DownloadFile* clone() const override;
};

// The picture of a support form's captcha.
class CaptchaFile : public DownloadFile
{
public:
    using DownloadFile::DownloadFile;
    DownloadFile* clone() const override;
};

// An advertisement picture.
class AdvertisementFile : public DownloadFile
{
public:
    using DownloadFile::DownloadFile;
    DownloadFile* clone() const override;
};

} // namespace Download
