// How every agent program of this kind of system begins and ends.
#pragma once

#include "backend/SystemPaths.h"

#include <functional>

namespace Kest::App {
class KestSettingsAppDelegate;
}

namespace Kest::Posix {

/// Runs an agent with the default paths and returns its exit status. Where another agent of this user runs,
/// prints one line and returns `statusIfRunning`. Where the system gives too few descriptors, prints one line
/// and returns 1.
int runAlone(const std::function<int(const Settings::SystemPaths&)>& agent, int statusIfRunning = 0);

/// Calls `awakeFromNib`. False, with one line printed, when the application cannot start.
bool startApplication(App::KestSettingsAppDelegate& application);

/// Runs the application from its start to its end; `loop` is the front end's, false on failure. Returns the
/// exit status: 1 after a failure.
int runApplication(App::KestSettingsAppDelegate& application, const std::function<bool()>& loop);

} // namespace Kest::Posix
