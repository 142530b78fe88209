// How every agent program of this kind of system begins.
#pragma once

#include "backend/SystemPaths.h"

#include <functional>

namespace Kest::Posix {

/// Runs an agent with the standard places and gives its exit status. Where another agent of this user runs,
/// says so in one line and gives 0.
int runAlone(const std::function<int(const Settings::SystemPaths&)>& agent);

} // namespace Kest::Posix
