#pragma once

#include "devices/PropertySource.h"

namespace Velmora::Daemon::Devices {

// Properties recorded in a folder: one text file per device, named by its kernel name, with a
// KEY=VALUE line per property. A device without a file has none.
class FilePropertySource : public PropertySource
{
public:
    explicit FilePropertySource(const QString& folder);
    Properties properties(const QString& name, const QString& devicePath) override;

private:
    QString m_folder;
};

} // namespace Velmora::Daemon::Devices
