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

/// The state of the system, gathered once for all checks.
struct CheckContext {
    Kest::Settings::SystemPaths paths;
    std::optional<Segment> version; // nullopt if there is no such segment
    std::optional<Segment> session; // nullopt if there is no such segment
    HostSnapshot snapshot;
    bool agentRuns = false;         // a process holds the agent's lock in the settings folder
    std::vector<FileHolder> agents; // the holders of this lock; empty if the system does not list open files
};

/// The result of one check; nullopt if there is nothing to check, for example because there is no segment.
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

/// Runs the checks above in their order, and then `checkTray`. Returns their findings. Changes nothing on the
/// system.
std::vector<Finding> runChecks(const Kest::Settings::SystemPaths& paths);

/// Returns the status of the file at `path`; for a symbolic link, that of the link itself. On failure,
/// returns nullopt and sets `errno`.
std::optional<struct stat> statusOf(const std::string& path);

/// Returns the file's type with an article, for example "a file" or "a link".
std::string kindOf(const struct stat& status);

} // namespace KestInspect
