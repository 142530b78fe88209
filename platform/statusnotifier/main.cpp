// The settings agent in the tray of a Linux desktop.
#include "app/KestSettingsAppDelegate.h"
#include "platform/control/ControlServer.h"
#include "platform/posix/CommandLine.h"
#include "platform/posix/SingleInstance.h"
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
    return Kest::Posix::runApplication(delegate, [&] {
        delegate.setObserver(Kest::Control::startServer(delegate, frontEnd, paths));
        return frontEnd.run(delegate);
    });
}

} // namespace

int main(int argc, char** argv)
{
    if (const auto status = Kest::Posix::answerArguments(
            argc, argv, "Shows the K3DHost mixing system's settings in the desktop's tray."))
        return *status;
    return Kest::Posix::runSingleInstance(runInTray);
}
