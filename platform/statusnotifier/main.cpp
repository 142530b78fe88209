// The settings agent in the tray of a Linux desktop.
#include "app/KestSettingsAppDelegate.h"
#include "backend/AgentLock.h"
#include "platform/statusnotifier/DesktopWorkspace.h"
#include "platform/statusnotifier/TrayFrontEnd.h"

#include <cstdio>

int main()
{
    std::setvbuf(stdout, nullptr, _IOLBF, 0); // each line is seen when it is printed
    const Kest::Settings::SystemPaths paths;
    const Kest::Settings::AgentLock lock(paths.absoluteSettingsFolder());
    if (lock.isHeldByAnother()) {
        std::printf("Kest Settings is already running.\n");
        return 0;
    }

    Kest::StatusNotifier::TrayFrontEnd frontEnd;
    if (frontEnd.bus() == nullptr) {
        std::fprintf(stderr, "No session bus; kest-settings-terminal shows the same menu in a terminal.\n");
        return 1;
    }
    Kest::StatusNotifier::DesktopWorkspace workspace(frontEnd.bus());
    Kest::App::KestSettingsAppDelegate delegate(frontEnd, workspace, paths);
    delegate.awakeFromNib();
    delegate.applicationDidFinishLaunching();
    const bool shown = frontEnd.run(delegate);
    delegate.applicationWillTerminate();
    return shown ? 0 : 1;
}
