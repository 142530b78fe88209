// The Mac's status bar.
#import "platform/appkit/StatusItem.h"

namespace Kest::AppKit {

id showStatusItem(NSMenu* menu, NSImage* logo)
{
    [logo setTemplate:YES]; // the menu bar gives it its colour
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

} // namespace Kest::AppKit
