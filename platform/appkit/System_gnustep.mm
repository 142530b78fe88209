// GNUstep: a screen that may be missing, no bundle, and no status bar.
#include "log/Output.h"
#import "platform/appkit/System.h"

namespace Kest::AppKit {

bool connectToScreen()
{
    @try {
        return [NSApplication sharedApplication] != nil;
    } @catch (NSException* failure) {
        Lct::printError("No screen (%s); kest-settings-terminal shows the same menu in a terminal.\n",
                        [[failure reason] UTF8String]);
        return false;
    }
}

// NSApplicationMain would read the bundle's description first.
int runApplication(int, const char**)
{
    [NSApp run];
    return 0;
}

// The menu is the application's main menu.
id showStatusItem(NSMenu* menu, NSImage* logo)
{
    [NSApp setApplicationIconImage:logo];
    [NSApp setMainMenu:menu];
    return menu;
}

void removeStatusItem(id) { [NSApp setMainMenu:nil]; }

} // namespace Kest::AppKit
