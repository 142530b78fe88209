#include "backend/AgentLock.h"
#include "tools/kest_inspect/Checks.h"

#include <algorithm>
#include <iterator>

namespace KestInspect {

namespace {

CheckContext gatherContext(const Kest::Settings::SystemPaths& paths)
{
    CheckContext context;
    context.paths = paths;
    context.version = findSegment(paths.versionSegment);
    context.session = findSegment(paths.sessionSegment);
    context.snapshot = readHost(paths);
    const auto lock = Kest::Settings::agentLockFile(paths.settingsFolder);
    std::ranges::copy_if(processesHolding(lock), std::back_inserter(context.agents), &FileHolder::holdsLock);
    context.agentRuns = !context.agents.empty() || isLocked(lock);
    return context;
}

} // namespace

std::vector<Finding> runChecks(const Kest::Settings::SystemPaths& paths)
{
    const auto context = gatherContext(paths);
    std::vector<Finding> findings;
    const auto add = [&](Check check) {
        if (check)
            findings.push_back(std::move(*check));
    };
    for (const auto check :
         {checkHost, checkVersionSegment, checkSessionSegment, checkAgentRecord, checkVersionKeyFile,
          checkSessionKeyFile, checkAgent, checkPipe, checkSettings, checkFacilities, checkLastUser})
        add(check(context));
    add(checkTray());
    return findings;
}

std::optional<struct stat> statusOf(const std::string& path)
{
    struct stat status {};
    return lstat(path.c_str(), &status) == 0 ? std::optional(status) : std::nullopt;
}

std::string kindOf(const struct stat& status)
{
    switch (status.st_mode & S_IFMT) {
    case S_IFREG:
        return "a file";
    case S_IFDIR:
        return "a folder";
    case S_IFLNK:
        return "a link";
    case S_IFIFO:
        return "a pipe";
    default:
        return "a device or socket";
    }
}

} // namespace KestInspect
