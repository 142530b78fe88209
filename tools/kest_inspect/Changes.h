// Finds the differences between two snapshots of the host's segments.
#pragma once

#include "tools/kest_inspect/Printed.h"

#include <vector>

namespace KestInspect {

/// Returns the changes from `before` to `now`. The `text` of a change is one line without a line feed, and
/// its `json` is an object whose member "event" names the change. The order is: the host, its version word,
/// its clients, the agent's record, the default bus. If the agent's record is new, these count as changes:
/// each text that is not empty, each parameter that is not 0, and each parameter with a name (such as
/// "SoloMode"), except a status number of 0.
std::vector<Printed> changesBetween(const HostSnapshot& before, const HostSnapshot& now);

/// Returns the content of `first` as changes from a snapshot without segments. If `first` has no session, the
/// first change reports that the host is down.
std::vector<Printed> snapshotAsChanges(const HostSnapshot& first);

} // namespace KestInspect
