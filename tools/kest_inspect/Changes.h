// What is different between two readings.
#pragma once

#include "tools/kest_inspect/Printed.h"

#include <vector>

namespace KestInspect {

/// What happened from `before` to `now`, each as one line and as an object with an "event", in the order of a
/// registry: the host, its clients, the agent's record, the default bus. Of a record that was not there
/// before, all that says something.
std::vector<Printed> changesBetween(const Reading& before, const Reading& now);

/// The same for a first reading: what is there, or that there is no host.
std::vector<Printed> changesUpTo(const Reading& now);

} // namespace KestInspect
