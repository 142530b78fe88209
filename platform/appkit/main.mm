// The settings agent in the menu bar.
#include "app/KestSettingsAppDelegate.h"
#include "log/Output.h"
#import "platform/appkit/AppKitFrontEnd.h"
#import "platform/appkit/AppKitWorkspace.h"
#import "platform/appkit/ApplicationDelegate.h"
#import "platform/appkit/MainThread.h"
#import "platform/appkit/SignalWatch.h"
#include "platform/posix/CommandLine.h"
#include "platform/posix/RunAlone.h"

#include <cctype>
#include <cstring>
#include <vector>

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

// Without what macOS and Xcode add: -psn_0_12345, and user defaults as -NSShowAllViews YES. AppKit reads
// those itself.
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
    return Posix::runAlone(
        [&](const Settings::SystemPaths& paths) { return runInMenuBar(paths, argc, argv); });
}
