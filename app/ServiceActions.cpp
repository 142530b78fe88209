#include "app/ServiceActions.h"

#include "backend/Backend.h"

namespace Kest::App {

void ServiceActions::restartService()
{
    Settings::Backend::save_username(paths.lastUserFile);
    (void)workspace.run(paths.restartCommand, {});
}

void ServiceActions::showAboutDialog() { workspace.showAboutPanel(about()); }

void ServiceActions::openUninstaller()
{
    if (!workspace.launchApplication(paths.uninstaller))
        workspace.log("Uninstall failed to launch");
}

void ServiceActions::unloadLaunchAgent()
{
    (void)workspace.run("/bin/launchctl", {"unload", paths.launchAgent});
}

} // namespace Kest::App
