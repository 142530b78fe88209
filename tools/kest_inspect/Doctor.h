// Looks at everything that the agent depends on.
#pragma once

#include "backend/SystemPaths.h"
#include "tools/kest_inspect/Finding.h"

#include <vector>

namespace KestInspect {

/// One finding for each thing that could be looked at, from the host to the tray. Changes nothing.
std::vector<Finding> examine(const Kest::Settings::SystemPaths& paths);

} // namespace KestInspect
