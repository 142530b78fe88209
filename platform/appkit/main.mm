// The settings agent in the menu bar.
#include "app/KestSettingsAppDelegate.h"
#include "log/Output.h"
#import "platform/appkit/AppKitFrontEnd.h"
#import "platform/appkit/AppKitWorkspace.h"
#import "platform/appkit/ApplicationDelegate.h"
#import "platform/appkit/MainThread.h"
#import "platform/appkit/SignalWatch.h"
#include "platform/posix/RunAlone.h"

#include <cstring>

namespace {

using namespace Kest;

// Everything here lives until the process ends, within AppKit's loop.
int runInMenuBar(const Settings::SystemPaths& paths, int argc, const char** argv)
{
    NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
    if (!AppKit::connectToScreen())
        return 1;
    AppKit::AppKitFrontEnd frontEnd;
    AppKit::AppKitWorkspace workspace;
    App::KestSettingsAppDelegate delegate(frontEnd, workspace, paths);
    const AppKit::SignalWatch signals([&] { frontEnd.quit(); });

    [NSApp setDelegate:(id)[[KestApplicationDelegate alloc] initWithApplication:&delegate]];
    frontEnd.setApplication(&delegate);
    delegate.awakeFromNib();
    if (const int failure = delegate.startError(); failure != 0) {
        Lct::printError("Kest Settings cannot start: %s\n", std::strerror(failure));
        return 1;
    }
    [pool drain];
    return AppKit::runApplication(argc, argv);
}

} // namespace

int main(int argc, const char** argv)
{
    return Posix::runAlone(
        [&](const Settings::SystemPaths& paths) { return runInMenuBar(paths, argc, argv); });
}
