// Polls the session and prints its changes.
#pragma once

#include "backend/SystemPaths.h"
#include "tools/kest_inspect/Options.h"

namespace KestInspect {

/// Prints the content of the host's segments, then each change. Returns after SIGINT, SIGTERM or SIGHUP,
/// after the time in `options`, or when writing the output has failed.
void watch(const Kest::Settings::SystemPaths& paths, const Options& options);

} // namespace KestInspect
