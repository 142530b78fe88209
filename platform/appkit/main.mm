// The settings agent in the menu bar.
#include "app/KestSettingsAppDelegate.h"
#import "platform/appkit/AppKitFrontEnd.h"
#import "platform/appkit/AppKitWorkspace.h"
#include "platform/appkit/Boundary.h"
#import "platform/appkit/System.h"
#include "platform/control/ControlServer.h"
#include "platform/posix/CommandLine.h"
#include "platform/posix/SingleInstance.h"

#include <cctype>
#include <cstring>
#include <vector>

// Passes the application's start and end, as AppKit reports them, to the agent.
@interface KestApplicationDelegate : NSObject {
@public
    Kest::App::KestSettingsAppDelegate* agent;
}
- (void)applicationDidFinishLaunching:(NSNotification*)notification;
- (void)applicationWillTerminate:(NSNotification*)notification;
@end

@implementation KestApplicationDelegate

- (void)applicationDidFinishLaunching:(NSNotification*)notification
{
    Kest::AppKit::stopExceptions("launching", [&] { agent->applicationDidFinishLaunching(); });
}

- (void)applicationWillTerminate:(NSNotification*)notification
{
    Kest::AppKit::stopExceptions("terminating", [&] { agent->applicationWillTerminate(); });
}

@end

namespace {

using namespace Kest;

// All its objects exist until the process ends, in AppKit's loop.
int runInMenuBar(const Settings::SystemPaths& paths, int argc, const char** argv)
{
    NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
    if (!AppKit::connectToScreen())
        return 1;
    AppKit::AppKitFrontEnd frontEnd;
    AppKit::AppKitWorkspace workspace;
    App::KestSettingsAppDelegate agent(frontEnd, workspace, paths);
    frontEnd.setApplication(agent);
    KestApplicationDelegate* delegate = [[KestApplicationDelegate alloc] init];
    delegate->agent = &agent;
    [NSApp setDelegate:(id)delegate];
    if (!Posix::startApplication(agent))
        return 1;
    agent.setObserver(Control::startServer(agent, frontEnd, paths));
    [pool drain];
    return AppKit::runApplication(argc, argv);
}

// Returns the arguments without those that macOS and Xcode add: -psn_0_12345, and user defaults such as
// -NSShowAllViews YES, which AppKit reads itself.
std::vector<const char*> ownArguments(int argc, const char** argv)
{
    std::vector<const char*> own;
    for (int i = 0; i < argc; ++i) {
        const bool isDefault = argv[i][0] == '-' && std::isalpha(static_cast<unsigned char>(argv[i][1])) != 0;
        if (isDefault && std::strncmp(argv[i], "-psn_", 5) == 0)
            continue;
        if (isDefault && i + 1 < argc)
            ++i; // its value
        else
            own.push_back(argv[i]);
    }
    return own;
}

} // namespace

int main(int argc, const char** argv)
{
    const auto own = ownArguments(argc, argv);
    if (const auto status =
            Posix::answerArguments(static_cast<int>(own.size()), own.data(),
                                   "Shows the K3DHost mixing system's settings in the menu bar."))
        return *status;
    return Posix::runSingleInstance(
        [&](const Settings::SystemPaths& paths) { return runInMenuBar(paths, argc, argv); });
}
