// Gives GNUstep's menu items what those of the Mac have besides, kept and not drawn, so that what is for the
// Mac alone runs here too.
#import "platform/appkit/MenuItemClass.h"

#include <map>

namespace {

struct Kept {
    NSView* view = nil;
    BOOL hidden = NO;
};

// Of items that are never freed, so that no other item is taken for one of them.
Kept& kept(NSMenuItem* item)
{
    static std::map<NSMenuItem*, Kept> all;
    const auto [entry, isNew] = all.try_emplace(item);
    if (isNew)
        [item retain];
    return entry->second;
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
@end
