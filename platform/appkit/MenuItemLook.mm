#import "platform/appkit/MenuItemLook.h"

#import "platform/appkit/EncodingRow.h"
#import "platform/appkit/System.h"
#include "platform/appkit/Text.h"

namespace Kest::AppKit {
namespace {

NSAttributedString* red(NSString* title)
{
    NSDictionary* attributes =
        [NSDictionary dictionaryWithObjectsAndKeys:[NSColor redColor], NSForegroundColorAttributeName,
                                                   [NSFont systemFontOfSize:[NSFont systemFontSize]],
                                                   NSFontAttributeName, nil];
    return [[[NSAttributedString alloc] initWithString:title attributes:attributes] autorelease];
}

void applyTitle(NSMenuItem* item, const App::ItemProperties& look)
{
    const bool titleTellsAll = look.view && !itemsCanHaveViews();
    NSString* title = toNSString(titleTellsAll ? plainLabel(look) : look.title);
    [item setTitle:title];
    if (look.red || [item attributedTitle] != nil)
        [item setAttributedTitle:look.red ? red(title) : nil];
    if (itemsCanHaveViews())
        [(id<KestMenuItemAbilities>)item setView:look.view ? encodingRow(*look.view, plainLabel(look)) : nil];
}

} // namespace

bool itemsCanHide() { return [menuItemClass() instancesRespondToSelector:@selector(setHidden:)]; }
bool itemsCanHaveViews() { return [menuItemClass() instancesRespondToSelector:@selector(setView:)]; }

void applyLook(NSMenuItem* item, const App::ItemProperties& look)
{
    [item setTag:look.tag];
    if (itemsCanHide())
        [(id<KestMenuItemAbilities>)item setHidden:look.hidden];
    if (look.separator)
        return;
    applyTitle(item, look);
    [item setState:look.on ? NSControlStateValueOn : NSControlStateValueOff];
    [item setEnabled:look.enabled];
}

} // namespace Kest::AppKit
