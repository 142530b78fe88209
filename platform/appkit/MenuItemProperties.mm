#import "platform/appkit/MenuItemProperties.h"

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

void applyTitle(NSMenuItem* item, const App::ItemProperties& props)
{
    const bool titleShowsProgress = props.encoding && !itemsCanHaveViews();
    NSString* title = toNSString(titleShowsProgress ? plainLabel(props) : props.title);
    [item setTitle:title];
    if (props.red || [item attributedTitle] != nil)
        [item setAttributedTitle:props.red ? red(title) : nil];
    if (itemsCanHaveViews())
        [(id<KestMacMenuItem>)item
            setView:props.encoding ? encodingRow(*props.encoding, plainLabel(props)) : nil];
}

} // namespace

bool itemsCanHide() { return [menuItemClass() instancesRespondToSelector:@selector(setHidden:)]; }
bool itemsCanHaveViews() { return [menuItemClass() instancesRespondToSelector:@selector(setView:)]; }

void applyProperties(NSMenuItem* item, const App::ItemProperties& props)
{
    [item setTag:props.tag];
    if (itemsCanHide())
        [(id<KestMacMenuItem>)item setHidden:props.hidden];
    if (props.separator)
        return;
    applyTitle(item, props);
    [item setState:props.on ? NSControlStateValueOn : NSControlStateValueOff];
    [item setEnabled:props.enabled];
}

} // namespace Kest::AppKit
