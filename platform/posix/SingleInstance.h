// The start and the end of every agent program on POSIX systems.
#pragma once

#include "backend/SystemPaths.h"

#include <functional>

namespace Kest::App {
class KestSettingsAppDelegate;
}

namespace Kest::Posix {

/// Runs an agent with the default paths and returns its exit status. If another agent of this user runs,
/// prints one line and returns `statusIfRunning`. If the system allows too few descriptors, prints one line
/// and returns 1.
int runSingleInstance(const std::function<int(const Settings::SystemPaths&)>& agent, int statusIfRunning = 0);

/// Calls `awakeFromNib`. Returns false, with one line printed, if the application cannot start.
bool startApplication(App::KestSettingsAppDelegate& application);

/// Runs the application from start to end; `loop` is the front end's and returns false on failure. Returns
/// the exit status: 1 after a failure.
int runApplication(App::KestSettingsAppDelegate& application, const std::function<bool()>& loop);

} // namespace Kest::Posix
