#pragma once

#include <QHash>
#include <QString>

namespace Velmora::Daemon::Devices {

// udev's properties of a block device (ID_MODEL, ID_FS_TYPE, ID_PART_ENTRY_TYPE...), in udev's
// own form: the *_ENC values and ID_PART_ENTRY_NAME carry \xNN escapes.
using Properties = QHash<QString, QString>;

class PropertySource
{
public:
    virtual ~PropertySource() = default;
    // name is the kernel name (sda1), devicePath the node (/dev/sda1).
    virtual Properties properties(const QString& name, const QString& devicePath) = 0;
};

// A value with udev's \xNN escapes undone.
QString decodedValue(const QString& encoded);

// The readable form of a property: the decoded KEY_ENC where there is one (udev replaces blanks
// in KEY by underscores), else KEY with underscores as blanks when asked for. Trimmed.
QString readableProperty(const Properties& properties, const QString& key, bool underscoresAreBlanks);

} // namespace Velmora::Daemon::Devices
