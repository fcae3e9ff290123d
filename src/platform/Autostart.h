#pragma once

#include <QString>

#include <memory>

namespace Velmora::Platform {

// Whether the program starts with the user's session, minimized to the tray. The entry names the
// program by its full path; an entry that points at another path counts as off.
class Autostart
{
public:
    virtual ~Autostart() = default;
    virtual bool isEnabled() const = 0;
    virtual void setEnabled(bool enabled) = 0;

    // The command line the entry holds for the program at `programPath`.
    static QString commandLine(const QString& programPath);
};

// The autostart of this platform for the running program.
std::unique_ptr<Autostart> createAutostart();

} // namespace Velmora::Platform
