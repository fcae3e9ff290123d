#pragma once

namespace Velmora::Update {

// Something that can look for newer versions on request; the automatic check drives all of them.
class UpdateInterface
{
public:
    virtual ~UpdateInterface() = default;
    virtual void checkForUpdates() = 0;
};

} // namespace Velmora::Update
