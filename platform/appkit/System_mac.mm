// The parts for the Mac: bundle, status bar and menus.
#import "platform/appkit/System.h"

namespace Kest::AppKit {

bool connectToScreen() { return [NSApplication sharedApplication] != nil; }

int runApplication(int argc, const char** argv)
{
    [[[NSProcessInfo processInfo] beginActivityWithOptions:NSActivityUserInitiatedAllowingIdleSystemSleep
                                                    reason:@"Follows the host service"] retain];
    return NSApplicationMain(argc, argv);
}

id showStatusItem(NSMenu* menu, NSImage* logo)
{
    [logo setTemplate:YES]; // the menu bar sets its colour
    NSStatusItem* item =
        [[[NSStatusBar systemStatusBar] statusItemWithLength:NSVariableStatusItemLength] retain];
    [item setMenu:menu];
    NSStatusBarButton* button = [item button];
    [button setImage:logo];
    [button setToolTip:[menu title]];
    [button setAccessibilityLabel:[menu title]];
    return item;
}

void removeStatusItem(id item)
{
    [[NSStatusBar systemStatusBar] removeStatusItem:item];
    [item release];
}

Class menuItemClass() { return [NSMenuItem class]; }
Class menuClass() { return [NSMenu class]; }

} // namespace Kest::AppKit
