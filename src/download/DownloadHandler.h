#pragma once

namespace Download {

class DownloadFile;

// A customer of the download queue. It hears of every file that ends, its own and others', and
// owns (and deletes) each one it is given.
class DownloadHandler
{
public:
    virtual ~DownloadHandler() = default;
    virtual void onFileDownloaded(DownloadFile* file) = 0;
    virtual void onFileDownloadFailed(DownloadFile* file) = 0;
};

} // namespace Download
