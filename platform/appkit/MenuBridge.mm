#import "platform/appkit/MenuBridge.h"

#include "platform/appkit/Boundary.h"

namespace Kest::AppKit {

void setId(NSMenuItem* item, App::ItemId id) { [item setRepresentedObject:[NSNumber numberWithInt:id]]; }

App::ItemId idOf(NSMenuItem* item) { return [[item representedObject] intValue]; }

App::ItemId idOf(NSMenu* menu)
{
    NSMenu* parent = [menu supermenu];
    const NSInteger index = parent == nil ? -1 : [parent indexOfItemWithSubmenu:menu];
    return index < 0 ? App::kStatusMenuId : idOf([parent itemAtIndex:index]);
}

} // namespace Kest::AppKit

using namespace Kest::AppKit;

@implementation KestMenuBridge

- (id)initWithListener:(MenuListener*)menuListener
{
    self = [super init];
    if (self != nil)
        listener = menuListener;
    return self;
}

- (void)disconnect
{
    listener = nullptr;
}

- (void)chooseItem:(NSMenuItem*)item
{
    if (listener != nullptr)
        stopExceptions("choosing an item", [&] { listener->itemChosen(idOf(item)); });
}

- (BOOL)menuHasKeyEquivalent:(NSMenu*)menu forEvent:(NSEvent*)event target:(id*)target action:(SEL*)action
{
    return NO;
}

- (void)menuNeedsUpdate:(NSMenu*)menu
{
    if (listener != nullptr)
        stopExceptions("updating a menu", [&] { listener->menuNeedsUpdate(idOf(menu)); });
}

- (void)menuWillOpen:(NSMenu*)menu
{
    if (listener != nullptr)
        stopExceptions("opening a menu", [&] { listener->menuWillOpen(idOf(menu)); });
}

- (void)menuDidClose:(NSMenu*)menu
{
    if (listener != nullptr)
        stopExceptions("closing a menu", [&] { listener->menuDidClose(idOf(menu)); });
}

@end
