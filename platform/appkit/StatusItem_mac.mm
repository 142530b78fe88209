// The Mac's status bar.
#import "platform/appkit/StatusItem.h"

namespace Kest::AppKit {
namespace {

// Before 10.10 the item has no button and draws its image itself.
void showImage(NSStatusItem* item, NSImage* logo, NSString* name)
{
    if ([item respondsToSelector:@selector(button)]) {
        NSStatusBarButton* button = [item button];
        [button setImage:logo];
        [button setToolTip:name];
        [button setAccessibilityLabel:name];
        return;
    }
#pragma clang diagnostic push
#pragma clang diagnostic ignored "-Wdeprecated-declarations"
    [item setHighlightMode:YES];
    [item setImage:logo];
#pragma clang diagnostic pop
}

} // namespace

id showStatusItem(NSMenu* menu, NSImage* logo)
{
    [logo setTemplate:YES]; // the menu bar gives it its colour
    NSStatusItem* item =
        [[[NSStatusBar systemStatusBar] statusItemWithLength:NSVariableStatusItemLength] retain];
    [item setMenu:menu];
    showImage(item, logo, [menu title]);
    return item;
}

void removeStatusItem(id item)
{
    [[NSStatusBar systemStatusBar] removeStatusItem:item];
    [item release];
}

} // namespace Kest::AppKit
