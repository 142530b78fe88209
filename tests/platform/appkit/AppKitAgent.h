// The whole application with AppKit's menu, and that menu read back.
#pragma once

#include "platform/appkit/AppKitFrontEnd.h"
#include "platform/appkit/MenuItemLook.h"
#import "platform/appkit/System.h"
#include "tests/app/Agent.h"

namespace Kest::Test {

/// Runs what waits for the main thread, in one of the loop's modes.
inline void runLoop(NSString* mode = NSDefaultRunLoopMode)
{
    @autoreleasepool {
        [[NSRunLoop currentRunLoop] runMode:mode beforeDate:[NSDate dateWithTimeIntervalSinceNow:0.001]];
    }
}

inline bool runLoopUntil(const std::function<bool()>& condition)
{
    return eventually([&] { return runLoop(), condition(); });
}

/// The lines of a menu: each item's title, tag and all that is seen of it, from the model ...
std::vector<std::string> lines(const App::ItemSnapshot& menu, const std::string& above = {});
/// ... and from AppKit.
std::vector<std::string> lines(NSMenu* menu, const std::string& above = {});

class LoopingFrontEnd : public AppKit::AppKitFrontEnd {
public:
    LoopingFrontEnd() = default;
    void runJobs() { runLoop(); }
};

class AppKitAgent : public AgentOn<LoopingFrontEnd> {
public:
    explicit AppKitAgent(const std::map<std::string, std::string>& settings = {}) : AgentOn(settings)
    {
        frontEnd.setApplication(delegate);
    }

    NSMenuItem* item(const std::string& path) const
    {
        const auto slash = path.rfind('/');
        NSMenu* menu =
            slash == std::string::npos ? frontEnd.statusMenu() : [item(path.substr(0, slash)) submenu];
        return (NSMenuItem*)[menu
            itemWithTitle:[NSString stringWithUTF8String:path.substr(slash + 1).c_str()]];
    }
    static void choose(NSMenuItem* item)
    {
        [[item menu] performActionForItemAtIndex:[[item menu] indexOfItem:item]];
    }
    void choose(const std::string& path) const { choose(item(path)); }
    NSMenu* submenu(const std::string& path) const { return [item(path) submenu]; }
    /// The messages of AppKit for the status menu and its submenus.
    static void needsUpdate(NSMenu* menu) { [(KestMenuBridge*)[menu delegate] menuNeedsUpdate:menu]; }
    static void willOpen(NSMenu* menu) { [(KestMenuBridge*)[menu delegate] menuWillOpen:menu]; }
    static void didClose(NSMenu* menu) { [(KestMenuBridge*)[menu delegate] menuDidClose:menu]; }
    void open(const std::string& path) const
    {
        needsUpdate(submenu(path));
        willOpen(submenu(path));
    }
    void close(const std::string& path) const
    {
        didClose(submenu(path));
        runLoop();
    }

    std::vector<std::string> modelLines() const { return lines(takeSnapshot(delegate.menu())); }
    std::vector<std::string> menuLines() const { return lines(frontEnd.statusMenu()); }
};

} // namespace Kest::Test
