// Polls the session and prints its changes.
#pragma once

#include "backend/SystemPaths.h"
#include "tools/kest_inspect/Options.h"

namespace KestInspect {

/// Runs until SIGINT, SIGTERM or SIGHUP, the end of the time in `options`, or the end of the reader of the
/// output.
void watch(const Kest::Settings::SystemPaths& paths, const Options& options);

} // namespace KestInspect
