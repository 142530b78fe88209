// Looks at the session again and again, and prints what has changed.
#pragma once

#include "backend/SystemPaths.h"
#include "tools/kest_inspect/Options.h"

namespace KestInspect {

/// Until SIGINT, SIGTERM or SIGHUP, the time that the options give, or the end of whoever reads the output.
void watch(const Kest::Settings::SystemPaths& paths, const Options& options);

} // namespace KestInspect
