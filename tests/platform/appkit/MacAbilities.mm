// Gives GNUstep's menu items the abilities of the Mac's to hide and to have a view. They store both and draw
// neither.
#import <AppKit/AppKit.h>
#include <map>

namespace {

struct State {
    NSView* view = nil;
    BOOL hidden = NO;
};

State& stateOf(NSMenuItem* item)
{
    static std::map<NSMenuItem*, State> states;
    if (!states.contains(item))
        [item retain]; // for ever: no later item has its address
    return states[item];
}

} // namespace

@implementation NSMenuItem (MacAbilities)
- (void)setHidden:(BOOL)hidden
{
    stateOf(self).hidden = hidden;
}
- (BOOL)isHidden
{
    return stateOf(self).hidden;
}
- (void)setView:(NSView*)view
{
    [stateOf(self).view autorelease];
    stateOf(self).view = [view retain];
}
- (NSView*)view
{
    return stateOf(self).view;
}
@end
