// Gives GNUstep's menu items what those of the Mac have besides, kept and not drawn, so that what is for the
// Mac alone runs here too.
#import <AppKit/AppKit.h>
#include <map>

namespace {

struct Kept {
    NSView* view = nil;
    BOOL hidden = NO;
    BOOL highlighted = NO;
};

std::map<NSMenuItem*, Kept> items;

// Of items that are never freed, so that no other item is taken for one of them.
Kept& kept(NSMenuItem* item)
{
    if (!items.contains(item))
        [item retain];
    return items[item];
}

} // namespace

@interface NSMenuItem (MacAbilities)
@end

@implementation NSMenuItem (MacAbilities)
- (void)setHidden:(BOOL)hidden
{
    kept(self).hidden = hidden;
}
- (BOOL)isHidden
{
    return kept(self).hidden;
}
- (void)setView:(NSView*)view
{
    [kept(self).view autorelease];
    kept(self).view = [view retain];
}
- (NSView*)view
{
    return kept(self).view;
}
- (void)setHighlighted:(BOOL)highlighted
{
    kept(self).highlighted = highlighted;
}
- (BOOL)isHighlighted
{
    return kept(self).highlighted;
}
@end

@interface NSView (MacAbilities)
@end

@implementation NSView (MacAbilities)
- (NSMenuItem*)enclosingMenuItem
{
    for (const auto& [item, is] : items)
        if (is.view == self)
            return item;
    return nil;
}
@end
