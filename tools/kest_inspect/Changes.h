// Finds the differences between two snapshots of the host's segments.
#pragma once

#include "tools/kest_inspect/Printed.h"

#include <vector>

namespace KestInspect {

/// Returns the changes from `before` to `now`. The `text` of a change is one line without a line feed, and
/// its `json` is an object whose member "event" names the kind of change. The order is: the host, its version
/// word, its clients, the agent's record, the default bus. If the agent's record is new, each of its texts
/// that is not empty and each of its parameters that is not 0 counts as a change. A parameter that has a name
/// (such as "SoloMode") also counts if it is 0, unless it is the host's status number.
std::vector<Printed> changesBetween(const HostSnapshot& before, const HostSnapshot& now);

/// Returns the content of `first` as changes from a snapshot without segments. If `first` has no session, the
/// first change reports that the host is down.
std::vector<Printed> snapshotAsChanges(const HostSnapshot& first);

} // namespace KestInspect
