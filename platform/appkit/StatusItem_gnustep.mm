// GNUstep has no status bar: the menu is the application's main menu.
#import "platform/appkit/StatusItem.h"

namespace Kest::AppKit {

id showStatusItem(NSMenu* menu, NSImage* logo)
{
    [NSApp setApplicationIconImage:logo];
    [NSApp setMainMenu:menu];
    return menu;
}

void removeStatusItem(id) { [NSApp setMainMenu:nil]; }

} // namespace Kest::AppKit
