#include "backend/AgentLock.h"
#include "tools/kest_inspect/Checks.h"

#include <algorithm>
#include <iterator>

namespace KestInspect {

namespace {

Surroundings lookAround(const Kest::Settings::SystemPaths& paths)
{
    Surroundings here;
    here.paths = paths;
    here.version = findSegment(paths.versionSegment);
    here.session = findSegment(paths.sessionSegment);
    here.reading = readHost(paths);
    const auto lock = Kest::Settings::agentLockFile(paths.settingsFolder);
    std::ranges::copy_if(openersOf(lock), std::back_inserter(here.agents), &Opener::holdsLock);
    here.agentRuns = !here.agents.empty() || isLocked(lock);
    return here;
}

} // namespace

std::vector<Finding> examine(const Kest::Settings::SystemPaths& paths)
{
    const auto here = lookAround(paths);
    std::vector<Finding> findings;
    const auto add = [&](Check check) {
        if (check)
            findings.push_back(std::move(*check));
    };
    for (const auto check :
         {checkHost, checkVersionSegment, checkSessionSegment, checkAgentRecord, checkVersionMarker,
          checkSessionMarker, checkAgent, checkPipe, checkSettings, checkFacilities, checkLastUser})
        add(check(here));
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
