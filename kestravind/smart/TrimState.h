#pragma once

#include <QString>

namespace Velmora::Daemon::Smart {

// What "TRIM on" means here. Linux always passes discards down when a file system asks for them;
// what varies is whether anybody asks. TRIM counts as on when at least one mounted file system
// lies on a solid-state device that accepts discards (not rotational, discard_max_bytes above 0)
// and that file system is trimmed: continuously, by a `discard` mount option, or periodically, by
// an enabled `fstrim.timer` (which trims every mounted file system that supports it). A machine
// with only spinning disks, or whose SSDs refuse discards, has TRIM off whatever it is set to.
class TrimState
{
public:
    struct Facts {
        bool discardCapableSsdMounted = false;
        bool mountedWithDiscard = false; // one of those SSD file systems has the discard option
        bool timerEnabled = false;       // fstrim.timer is enabled and not masked

        bool trimEnabled() const { return discardCapableSsdMounted && (mountedWithDiscard || timerEnabled); }
    };

    // `root` is "/" on a live system and a fixture tree in tests: sysfs, procfs and /etc below it.
    explicit TrimState(QString root = QStringLiteral("/"));

    Facts read() const;

private:
    bool timerEnabled() const;

    QString m_root;
};

} // namespace Velmora::Daemon::Smart
