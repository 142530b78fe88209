// The checks of the doctor, one thing each.
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

/// What several checks ask about.
struct Surroundings {
    Kest::Settings::SystemPaths paths;
    std::optional<Segment> version;
    std::optional<Segment> session;
    Reading reading;
    bool agentRuns = false;     // one of this user
    std::vector<Opener> agents; // as far as the system tells
};

/// Nothing where there is nothing to look at.
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

/// Runs all checks, from the host to the tray, each with a finding where there is something to look at.
/// Changes nothing.
std::vector<Finding> examine(const Kest::Settings::SystemPaths& paths);

/// The status of what stands at a path, links not followed; nothing, with `errno` set, when nothing is known.
std::optional<struct stat> statusOf(const std::string& path);

/// "a file", "a link", ...
std::string kindOf(const struct stat& status);

} // namespace KestInspect
