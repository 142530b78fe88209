// Actions on the installation. None waits for the program that it starts.
#pragma once

#include "app/FrontEnd.h"
#include "backend/SystemPaths.h"

namespace Kest::App {

/// Main thread only; both references outlive it.
class ServiceActions {
public:
    ServiceActions(Workspace& desktop, const Settings::SystemPaths& systemPaths)
        : workspace(desktop), paths(systemPaths)
    {}

    /// Writes the user's name to the last-user marker, then starts the host's restart command. A missing
    /// command is not reported.
    void restartService();
    // The architecture items are shown but have no effect, by design.
    void switchTo32() {}
    void switchTo64() {}
    void showAboutDialog();
    /// Starts the uninstaller; logs one line if there is none.
    void openUninstaller();
    /// Unloads the launch agent at the end: the system need not start it again. Ignores the result.
    void unloadLaunchAgent();

private:
    Workspace& workspace;
    const Settings::SystemPaths& paths;
};

} // namespace Kest::App
