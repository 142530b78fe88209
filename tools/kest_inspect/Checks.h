// The checks of `kest-inspect doctor`.
#pragma once

#include "tools/kest_inspect/Finding.h"
#include "tools/kest_inspect/Reading.h"
#include "tools/kest_inspect/Segment.h"
#include "tools/kest_inspect/SystemLook.h"

#include <optional>
#include <string>
#include <sys/stat.h>
#include <vector>

namespace KestInspect {

/// The data of several checks.
struct Surroundings {
    Kest::Settings::SystemPaths paths;
    std::optional<Segment> version;
    std::optional<Segment> session;
    Reading reading;
    bool agentRuns = false;     // an agent of this user
    std::vector<Opener> agents; // those that the system lists
};

/// nullopt if there is nothing to check.
using Check = std::optional<Finding>;

Check checkHost(const Surroundings& here);
Check checkVersionSegment(const Surroundings& here);
Check checkSessionSegment(const Surroundings& here);
Check checkAgentRecord(const Surroundings& here);
Check checkVersionMarker(const Surroundings& here);
Check checkSessionMarker(const Surroundings& here);
Check checkAgent(const Surroundings& here);
Check checkPipe(const Surroundings& here);
Check checkSettings(const Surroundings& here);
Check checkFacilities(const Surroundings& here);
Check checkLastUser(const Surroundings& here);

/// Runs all checks, from the host to the tray, and returns their findings. Changes nothing.
std::vector<Finding> examine(const Kest::Settings::SystemPaths& paths);

/// Returns the status of the file at a path without following a link; nullopt, with `errno` set, after an
/// error.
std::optional<struct stat> statusOf(const std::string& path);

/// Returns "a file", "a link", ...
std::string kindOf(const struct stat& status);

} // namespace KestInspect
