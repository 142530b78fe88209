// Actions on the installation: each starts something and returns at once.
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

    /// Names the user in the last-user marker, then starts the host's restart command. A missing command is
    /// not reported.
    void restartService();
    // The architecture entries are kept, and have no effect on purpose.
    void switchTo32() {}
    void switchTo64() {}
    void showAboutDialog();
    /// One log line when there is no uninstaller.
    void openUninstaller();
    /// At the end: the system need not start the agent again. Its outcome is not looked at.
    void unloadLaunchAgent();

private:
    Workspace& workspace;
    const Settings::SystemPaths& paths;
};

} // namespace Kest::App
