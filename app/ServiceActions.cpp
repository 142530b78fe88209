#include "app/ServiceActions.h"

#include "backend/Backend.h"
#include "log/Log.h"

namespace Kest::App {

void ServiceActions::restartService()
{
    Settings::Backend::save_username(paths.lastUserMarker);
    (void)workspace.run(paths.restartCommand, {});
}

void ServiceActions::showAboutDialog() { workspace.showAboutPanel(about()); }

void ServiceActions::openUninstaller()
{
    if (!workspace.launchApplication(paths.uninstaller))
        Lct::Log(Lct::eLogError, "openUninstaller", "Uninstall failed to launch");
}

void ServiceActions::unloadLaunchAgent()
{
    (void)workspace.run("/bin/launchctl", {"unload", paths.launchAgent});
}

} // namespace Kest::App
