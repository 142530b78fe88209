// Finds the differences between two snapshots of the host's segments.
#pragma once

#include "tools/kest_inspect/Printed.h"

#include <vector>

namespace KestInspect {

/// Returns the changes from `before` to `now`. The `text` of a change is one line without a line feed, and
/// its `json` is an object with the member "event". The order is: the host, its version word, its clients,
/// the agent's record, the default bus. If the agent's record is new, each text that is not empty counts as a
/// change, and so does each parameter that has a name or is not 0. Exception: a status number of 0 does not
/// count as a change.
std::vector<Printed> changesBetween(const HostSnapshot& before, const HostSnapshot& now);

/// Returns the content of the first snapshot as changes. If there is no session, the first change reports
/// that the host is down.
std::vector<Printed> snapshotAsChanges(const HostSnapshot& first);

} // namespace KestInspect
