// Gives GNUstep's menu items the abilities of the Mac's to hide and to have a view. They store both and draw
// neither.
#import <AppKit/AppKit.h>
#include <map>

namespace {

// New items get both, so that none has those of an earlier item at its address.
std::map<NSMenuItem*, BOOL> hiddenItems;
std::map<NSMenuItem*, NSView*> views; // retained for ever

} // namespace

@implementation NSMenuItem (MacAbilities)
- (void)setHidden:(BOOL)hidden
{
    hiddenItems[self] = hidden;
}
- (BOOL)isHidden
{
    return hiddenItems[self];
}
- (void)setView:(NSView*)view
{
    views[self] = [view retain];
}
- (NSView*)view
{
    return views[self];
}
@end
