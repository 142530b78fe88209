// The checks of `kest-inspect doctor`.
#pragma once

#include "tools/kest_inspect/Finding.h"
#include "tools/kest_inspect/HostSnapshot.h"
#include "tools/kest_inspect/Segment.h"
#include "tools/kest_inspect/SystemQueries.h"

#include <optional>
#include <string>
#include <sys/stat.h>
#include <vector>

namespace KestInspect {

/// The data of several checks.
struct CheckContext {
    Kest::Settings::SystemPaths paths;
    std::optional<Segment> version;
    std::optional<Segment> session;
    HostSnapshot snapshot;
    bool agentRuns = false;         // an agent of this user
    std::vector<FileHolder> agents; // those that the system lists
};

/// nullopt if there is nothing to check.
using Check = std::optional<Finding>;

Check checkHost(const CheckContext& context);
Check checkVersionSegment(const CheckContext& context);
Check checkSessionSegment(const CheckContext& context);
Check checkAgentRecord(const CheckContext& context);
Check checkVersionKeyFile(const CheckContext& context);
Check checkSessionKeyFile(const CheckContext& context);
Check checkAgent(const CheckContext& context);
Check checkPipe(const CheckContext& context);
Check checkSettings(const CheckContext& context);
Check checkFacilities(const CheckContext& context);
Check checkLastUser(const CheckContext& context);

/// Runs all checks, from the host to the tray, and returns their findings. Changes nothing.
std::vector<Finding> runChecks(const Kest::Settings::SystemPaths& paths);

/// Returns the status of the file at a path without following a link; nullopt, with `errno` set, after an
/// error.
std::optional<struct stat> statusOf(const std::string& path);

/// Returns "a file", "a link", ...
std::string kindOf(const struct stat& status);

} // namespace KestInspect
