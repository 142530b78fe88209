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
    bool agentRuns = false;         // an agent holds the lock of the settings folder
    std::vector<FileHolder> agents; // the holders of the lock; empty if the system does not list open files
};

/// The result of a check; nullopt if there is nothing to check, for example no segment.
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

/// Runs all checks and returns their findings. The findings about the host are the first, the finding about
/// the tray is the last. Changes nothing on the system.
std::vector<Finding> runChecks(const Kest::Settings::SystemPaths& paths);

/// Returns the status of the file at `path`. If the file is a symbolic link, returns the status of the link.
/// On failure, returns nullopt and sets `errno`.
std::optional<struct stat> statusOf(const std::string& path);

/// Returns the type of a file with an article, for example "a file" or "a link".
std::string kindOf(const struct stat& status);

} // namespace KestInspect
