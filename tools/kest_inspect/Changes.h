// Finds the differences between two readings of the host's segments.
#pragma once

#include "tools/kest_inspect/Printed.h"

#include <vector>

namespace KestInspect {

/// Returns the changes from `before` to `now`, each as one line and as an object with an "event", in this
/// order: the host, its version word, its clients, the agent's record, the default bus. In a new record,
/// parameters that have a name or are not 0 count as changed, and texts that are not empty.
std::vector<Printed> changesBetween(const HostSnapshot& before, const HostSnapshot& now);

/// Returns the same for the first reading: its content, or that there is no host.
std::vector<Printed> changesUpTo(const HostSnapshot& now);

} // namespace KestInspect
