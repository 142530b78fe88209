// The menu actions that start other programs or show the about panel. They do not wait for these programs.
#pragma once

#include "app/FrontEnd.h"
#include "backend/SystemPaths.h"

namespace Kest::App {

/// Main thread only. Both references must outlive this object.
class ServiceActions {
public:
    ServiceActions(Workspace& desktop, const Settings::SystemPaths& systemPaths)
        : workspace(desktop), paths(systemPaths)
    {}

    /// Writes the user's login name into `paths.lastUserFile`, then starts `paths.restartCommand`, which
    /// restarts the host. Does not report a missing command.
    void restartService();
    // The architecture items are shown but have no effect, by design.
    void switchTo32() {}
    void switchTo64() {}
    void showAboutDialog();
    /// Starts the uninstaller. Logs one line if it cannot be started.
    void openUninstaller();
    /// Starts `launchctl` of macOS to unload `paths.launchAgent`, so that the system does not start Kest
    /// Settings again. Ignores failures.
    void unloadLaunchAgent();

private:
    Workspace& workspace;
    const Settings::SystemPaths& paths;
};

} // namespace Kest::App
