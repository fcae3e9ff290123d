#pragma once

#include "boot/RootedFiles.h"

#include <QString>
#include <QStringList>

#include <memory>

namespace Velmora::Daemon::Boot {

// The mounts of one piece of work, made in a private folder (mode 0700) under a folder the service
// owns, so that no user and no desktop sees them, and the folder bound onto itself as a private
// mount so that nothing mounted below it shows in other mount namespaces. Everything is unmounted
// in reverse order, and the folder removed, when the stack is dropped, whatever happened before.
class MountStack
{
public:
    static std::unique_ptr<MountStack> create(const QString& parent, QString* error);
    ~MountStack();
    MountStack(const MountStack&) = delete;
    MountStack& operator=(const MountStack&) = delete;

    // Where the system's root is mounted, and a descriptor of it once it is.
    QString rootPath() const { return m_folder + QStringLiteral("/root"); }
    int root() const { return m_root.get(); }

    // Mounts the system's root partition.
    bool mountRoot(const QString& device, const QString& fileSystem, QString* error);
    // Mounts a device, or binds a folder of this machine, onto `relative` inside the mounted root,
    // which must be a folder reached without any symbolic link.
    bool mountInside(const QString& device, const QString& fileSystem, const QString& relative, QString* error);
    bool bindInside(const QString& hostFolder, const QString& relative, QString* error);

    // Unmounts everything, latest first, and removes the folder; false if anything stayed.
    bool release();

private:
    explicit MountStack(QString folder);
    bool mountAt(const QString& source, const QString& fileSystem, unsigned long flags, const QString& relative, QString* error);

    QString m_folder;
    UniqueFd m_root;
    QStringList m_mounted; // paths, in the order mounted
    bool m_released = false;
};

} // namespace Velmora::Daemon::Boot
