// The start and the end of each agent program on POSIX systems.
#pragma once

#include "backend/SystemPaths.h"

#include <functional>

namespace Kest::App {
class KestSettingsAppDelegate;
}

namespace Kest::Posix {

/// Calls `agent` with the default paths and returns the exit status that `agent` returns. In two cases,
/// prints one line and does not call `agent`: if another agent of this user is running, returns
/// `statusIfRunning`; if the process cannot open 32 more files, returns 1.
int runSingleInstance(const std::function<int(const Settings::SystemPaths&)>& agent, int statusIfRunning = 0);

/// Calls the application's `awakeFromNib`. Returns false and prints one line if that failed.
bool startApplication(App::KestSettingsAppDelegate& application);

/// Starts the application, calls `loop`, and terminates the application. `loop` must run the front end's main
/// loop and return false on failure; it is not called if the start failed. Returns the exit status: 0, or 1
/// if the start or `loop` failed.
int runApplication(App::KestSettingsAppDelegate& application, const std::function<bool()>& loop);

} // namespace Kest::Posix
