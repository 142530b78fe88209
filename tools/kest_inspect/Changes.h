// Finds the differences between two snapshots of the host's segments.
#pragma once

#include "tools/kest_inspect/Printed.h"

#include <vector>

namespace KestInspect {

/// Returns the changes from `before` to `now`. `text` of each is one line, and `json` an object with the
/// member "event". The order is: the host, its version word, its clients, the agent's record, the default
/// bus. If the agent's record is new, its texts that are not empty and its parameters that are not 0 or have
/// a name count as changes; a status number of 0 does not.
std::vector<Printed> changesBetween(const HostSnapshot& before, const HostSnapshot& now);

/// Returns the content of the first snapshot as changes. If there is no session, the first change reports
/// that the host is down.
std::vector<Printed> changesUpTo(const HostSnapshot& now);

} // namespace KestInspect
