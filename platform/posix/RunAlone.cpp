#include "platform/posix/RunAlone.h"

#include "backend/AgentLock.h"
#include "backend/HomeFolder.h"
#include "log/Log.h"
#include "log/Output.h"

#include <cstdio>

namespace Kest::Posix {

int runAlone(const std::function<int(const Settings::SystemPaths&)>& agent)
{
    std::setvbuf(stdout, nullptr, _IOLBF, 0); // each line is seen when it is printed
    if (const auto problem = Settings::repairHome(); !problem.empty())
        Lct::Log(Lct::eLogWarning, "home", "%s", problem.c_str());
    const Settings::SystemPaths paths;
    const Settings::AgentLock lock(paths.absoluteSettingsFolder());
    if (lock.isHeldByAnother()) {
        Lct::print("Kest Settings is already running (process %d).\n", lock.holder());
        return 0;
    }
    return agent(paths);
}

} // namespace Kest::Posix
