// The settings agent in the tray of a Linux desktop.
#include "app/KestSettingsAppDelegate.h"
#include "platform/posix/RunAlone.h"
#include "platform/statusnotifier/DesktopWorkspace.h"
#include "platform/statusnotifier/TrayFrontEnd.h"

namespace {

int runInTray(const Kest::Settings::SystemPaths& paths)
{
    Kest::StatusNotifier::TrayFrontEnd frontEnd;
    if (frontEnd.bus() == nullptr)
        return 1;
    Kest::StatusNotifier::DesktopWorkspace workspace(frontEnd.bus());
    Kest::App::KestSettingsAppDelegate delegate(frontEnd, workspace, paths);
    delegate.awakeFromNib();
    delegate.applicationDidFinishLaunching();
    const bool shown = frontEnd.run(delegate);
    delegate.applicationWillTerminate();
    return shown ? 0 : 1;
}

} // namespace

int main() { return Kest::Posix::runAlone(runInTray); }
