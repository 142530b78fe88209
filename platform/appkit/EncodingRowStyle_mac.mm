// The Mac's semantic colours, which follow appearance and contrast, and the material of its menus' selection.
#import "platform/appkit/EncodingRowStyle.h"

namespace {

// In points, since macOS 11; earlier menus select the whole row.
constexpr CGFloat kSelectionInset = 5;
constexpr CGFloat kSelectionRadius = 4;

NSImage* roundedMask()
{
    const CGFloat side = 2 * kSelectionRadius + 1; // the corners, and one point that is stretched
    NSImage* mask = [NSImage imageWithSize:NSMakeSize(side, side)
                                   flipped:NO
                            drawingHandler:^BOOL(NSRect bounds) {
                              [[NSColor blackColor] set];
                              [[NSBezierPath bezierPathWithRoundedRect:bounds
                                                               xRadius:kSelectionRadius
                                                               yRadius:kSelectionRadius] fill];
                              return YES;
                            }];
    [mask setCapInsets:NSEdgeInsetsMake(kSelectionRadius, kSelectionRadius, kSelectionRadius,
                                        kSelectionRadius)];
    [mask setResizingMode:NSImageResizingModeStretch];
    return mask;
}

} // namespace

@interface KestEncodingRow (Selection)
@end

@implementation KestEncodingRow (Selection)

// AppKit draws the row again when its item is highlighted and when it no longer is.
- (void)viewWillDraw
{
    [super viewWillDraw];
    [self colorLabels];
    NSView* selection = [[self subviews] objectAtIndex:0]; // added by addSelectionView
    const BOOL hidden = ![self isSelected];
    if ([selection isHidden] == hidden)
        return;
    [selection setHidden:hidden];
    for (NSView* view in [self subviews])
        [view setNeedsDisplay:YES];
}

@end

namespace Kest::AppKit {

RowColors rowColors(bool selected)
{
    if (selected) {
        NSColor* text = [NSColor selectedMenuItemTextColor];
        return {text, text, text};
    }
    NSColor* text = [NSColor labelColor];
    const bool contrasts = [[NSWorkspace sharedWorkspace] accessibilityDisplayShouldIncreaseContrast];
    return {text, contrasts ? text : [NSColor separatorColor], [NSColor controlAccentColor]};
}

void addSelectionView(KestEncodingRow* row)
{
    NSRect frame = [row bounds];
    NSVisualEffectView* selection = [[[NSVisualEffectView alloc] initWithFrame:frame] autorelease];
    if (@available(macOS 11.0, *)) {
        [selection setFrame:NSInsetRect(frame, kSelectionInset, 0)];
        [selection setMaskImage:roundedMask()];
    }
    [selection setMaterial:NSVisualEffectMaterialSelection];
    [selection setBlendingMode:NSVisualEffectBlendingModeBehindWindow];
    [selection setState:NSVisualEffectStateActive]; // a menu's window is never the key window
    [selection setEmphasized:YES];
    [selection setAutoresizingMask:NSViewWidthSizable | NSViewHeightSizable];
    [selection setHidden:YES];
    [row addSubview:selection positioned:NSWindowBelow relativeTo:nil];
}

} // namespace Kest::AppKit
