#import "platform/appkit/EncodingRow.h"

#import "platform/appkit/EncodingRowStyle.h"
#include "platform/appkit/Text.h"

#include <algorithm>

namespace {

// In points. The row begins where the titles of other items do, after the column of check marks.
constexpr CGFloat kWidth = 280;
constexpr CGFloat kHeight = 34;
constexpr CGFloat kLeft = 20;
constexpr CGFloat kRight = 24; // includes the arrow
constexpr CGFloat kLabelHeight = 18;
constexpr CGFloat kLabelBottom = 12;
constexpr CGFloat kPercentageWidth = 48;
constexpr CGFloat kBarBottom = 5;
constexpr CGFloat kBarHeight = 5;
constexpr CGFloat kArrowRight = 10;
constexpr CGFloat kArrowWidth = 5;
constexpr CGFloat kArrowHeight = 9;
constexpr CGFloat kArrowThickness = 1.5;

enum LabelTag : std::uint8_t { nameTag = 1, percentageTag = 2 };

NSTextField* makeLabel(LabelTag tag, NSRect frame, NSTextAlignment alignment, NSUInteger resizing)
{
    NSTextField* label = [[[NSTextField alloc] initWithFrame:frame] autorelease];
    [label setTag:tag];
    [label setEditable:NO];
    [label setSelectable:NO];
    [label setBordered:NO];
    [label setBezeled:NO];
    [label setDrawsBackground:NO];
    [label setFont:[NSFont menuFontOfSize:0]];
    [label setAlignment:alignment];
    [label setAutoresizingMask:resizing];
    [[label cell] setLineBreakMode:NSLineBreakByTruncatingMiddle];
    return label;
}

KestEncodingRow* makeTemplate()
{
    KestEncodingRow* row = [[KestEncodingRow alloc] initWithFrame:NSMakeRect(0, 0, kWidth, kHeight)];
    [row setAutoresizingMask:NSViewWidthSizable];
    NSView* bar = [[[KestEncodingBar alloc] initWithFrame:[row bounds]] autorelease];
    [bar setAutoresizingMask:NSViewWidthSizable | NSViewHeightSizable];
    [row addSubview:bar];
    const CGFloat percentageLeft = kWidth - kRight - kPercentageWidth;
    [row addSubview:makeLabel(nameTag, NSMakeRect(kLeft, kLabelBottom, percentageLeft - kLeft, kLabelHeight),
                              NSTextAlignmentLeft, NSViewWidthSizable)];
    [row addSubview:makeLabel(percentageTag,
                              NSMakeRect(percentageLeft, kLabelBottom, kPercentageWidth, kLabelHeight),
                              NSTextAlignmentRight, NSViewMinXMargin)];
    return row;
}

#pragma clang diagnostic push
#pragma clang diagnostic ignored "-Wdeprecated-declarations" // on the Mac; GNUstep lacks the replacements

// Returns nil on systems that no longer archive views.
KestEncodingRow* deepCopy(KestEncodingRow* row)
{
    @try {
        return [NSUnarchiver unarchiveObjectWithData:[NSArchiver archivedDataWithRootObject:row]];
    } @catch (NSException*) {
        return nil;
    }
}

#pragma clang diagnostic pop

void setLabels(KestEncodingRow* row, const Kest::App::EncodingState& labels)
{
    [[row nameLabel] setStringValue:Kest::AppKit::toNSString(labels.title())];
    [[row percentageLabel] setStringValue:Kest::AppKit::toNSString(labels.percentText())];
}

} // namespace

// Methods of the Mac only: the menu item of a view, and whether it is highlighted.
@protocol KestMacMenuItemView
- (id)enclosingMenuItem;
- (BOOL)isHighlighted;
@end

@implementation KestEncodingRow

@synthesize progress;

- (NSTextField*)nameLabel
{
    return [self viewWithTag:nameTag];
}

- (NSTextField*)percentageLabel
{
    return [self viewWithTag:percentageTag];
}

- (NSRect)bar
{
    return NSMakeRect(kLeft, kBarBottom, [self bounds].size.width - kLeft - kRight, kBarHeight);
}

- (NSRect)arrow
{
    const NSRect all = [self bounds];
    return NSMakeRect(NSMaxX(all) - kArrowRight - kArrowWidth, NSMidY(all) - kArrowHeight / 2, kArrowWidth,
                      kArrowHeight);
}

- (BOOL)isSelected
{
    if (![self respondsToSelector:@selector(enclosingMenuItem)])
        return NO;
    id item = [(id<KestMacMenuItemView>)self enclosingMenuItem];
    return [(id<KestMacMenuItemView>)item isHighlighted];
}

- (void)colorLabels
{
    NSColor* color = Kest::AppKit::rowColors([self isSelected]).text;
    for (NSTextField* label : {[self nameLabel], [self percentageLabel]})
        if (![[label textColor] isEqual:color])
            [label setTextColor:color];
}

@end

@implementation KestEncodingBar

- (void)drawRect:(NSRect)dirty
{
    auto* row = (KestEncodingRow*)[self superview];
    const auto colors = Kest::AppKit::rowColors([row isSelected]);
    NSRect filled = [row bar];
    [colors.barFrame set];
    [NSBezierPath strokeRect:NSInsetRect(filled, 0.5, 0.5)];
    filled.size.width *= [row progress];
    [colors.barFill set];
    [NSBezierPath fillRect:filled];

    const NSRect arrow = [row arrow];
    NSBezierPath* path = [NSBezierPath bezierPath];
    [path setLineWidth:kArrowThickness];
    [path moveToPoint:NSMakePoint(NSMinX(arrow), NSMaxY(arrow))];
    [path lineToPoint:NSMakePoint(NSMaxX(arrow), NSMidY(arrow))];
    [path lineToPoint:NSMakePoint(NSMinX(arrow), NSMinY(arrow))];
    [colors.text set];
    [path stroke];
}

@end

namespace Kest::AppKit {

KestEncodingRow* encodingRow(const App::EncodingState& labels, const std::string& accessibilityText)
{
    static KestEncodingRow* const rowTemplate = makeTemplate();
    setLabels(rowTemplate, labels);
    KestEncodingRow* row = deepCopy(rowTemplate);
    if (row == nil) {
        row = [makeTemplate() autorelease];
        setLabels(row, labels);
    }
    [row setProgress:std::clamp(labels.percent.value_or(0), 0, 100) / 100.0];
    addSelectionView(row);
    if ([row respondsToSelector:@selector(setAccessibilityLabel:)])
        [row performSelector:@selector(setAccessibilityLabel:) withObject:toNSString(accessibilityText)];
    return row;
}

} // namespace Kest::AppKit
