// GNUstep has no status bar: the menu is the application's main menu. It tells a menu's delegate neither that
// the menu opens nor that it closes, but that it is about to be drawn, and everyone that the pointer leaves
// all menus.
#import "platform/appkit/MenuBridge.h"
#import "platform/appkit/StatusItem.h"

@interface KestMenuBridge (FollowingThePointer)
- (void)pointerCame:(NSNotification*)notification;
- (void)pointerWent:(NSNotification*)notification;
@end

namespace {

bool pointerIsInMenus = false;

void closeAll(NSMenu* menu, KestMenuBridge* bridge)
{
    for (NSMenuItem* item in [menu itemArray])
        if ([item hasSubmenu]) {
            [bridge menuDidClose:[item submenu]];
            closeAll([item submenu], bridge);
        }
}

} // namespace

@implementation KestMenuBridge (FollowingThePointer)

- (void)menuNeedsUpdate:(NSMenu*)menu
{
    if (pointerIsInMenus)
        [self menuWillOpen:menu];
}

- (void)pointerCame:(NSNotification*)notification
{
    pointerIsInMenus = true;
}

- (void)pointerWent:(NSNotification*)notification
{
    pointerIsInMenus = false;
    closeAll([NSApp mainMenu], self);
}

@end

namespace Kest::AppKit {

id showStatusItem(NSMenu* menu, NSImage* logo, KestMenuBridge* bridge)
{
    NSNotificationCenter* centre = [NSNotificationCenter defaultCenter];
    [centre addObserver:bridge
               selector:@selector(pointerCame:)
                   name:NSMenuDidBeginTrackingNotification
                 object:nil];
    [centre addObserver:bridge
               selector:@selector(pointerWent:)
                   name:NSMenuDidEndTrackingNotification
                 object:nil];
    [NSApp setApplicationIconImage:logo];
    [NSApp setMainMenu:menu];
    return bridge;
}

void removeStatusItem(id item)
{
    [[NSNotificationCenter defaultCenter] removeObserver:item];
    [NSApp setMainMenu:nil];
}

} // namespace Kest::AppKit
