#pragma once

#include "platform/Autostart.h"

namespace Velmora::Platform {

// An XDG autostart entry, "<config>/autostart/<name>.desktop", whose Exec line is the quoted
// program path followed by " -minimized".
class XdgAutostart : public Autostart
{
public:
    XdgAutostart(const QString& entryPath, const QString& programPath, const QString& name);

    bool isEnabled() const override;
    void setEnabled(bool enabled) override;

    QString entryPath() const { return m_entryPath; }

private:
    QString m_entryPath;
    QString m_programPath;
    QString m_name;
};

} // namespace Velmora::Platform
