// What the files *_mac.mm use of AppKit and Foundation, declared as Apple documents it: names, types and the
// first release of macOS that has it. Elsewhere than on a Mac those files are type-checked with it, as the
// test appkit_mac_files.
#pragma once

#define SINCE(version) __attribute__((availability(macos, introduced = version)))

using BOOL = signed char;
#define YES ((BOOL)1)
#define NO ((BOOL)0)
#define nil nullptr

using CGFloat = double;
using NSInteger = long;
using NSUInteger = unsigned long;

struct NSSize {
    CGFloat width, height;
};
struct NSRect {
    CGFloat x, y, width, height;
};
struct NSEdgeInsets {
    CGFloat top, left, bottom, right;
};
NSSize NSMakeSize(CGFloat width, CGFloat height);
NSRect NSInsetRect(NSRect rect, CGFloat dx, CGFloat dy);
NSEdgeInsets NSEdgeInsetsMake(CGFloat top, CGFloat left, CGFloat bottom, CGFloat right);

@protocol NSObject
- (BOOL)respondsToSelector:(SEL)selector;
@end

__attribute__((objc_root_class))
@interface NSObject<NSObject>
+ (instancetype)alloc;
+ (Class)class;
- (instancetype)init;
- (instancetype)retain;
- (instancetype)autorelease;
- (oneway void)release;
@end

@interface NSString : NSObject
@end

using NSRunLoopMode = NSString*;
extern NSRunLoopMode const NSDefaultRunLoopMode;
extern NSRunLoopMode const NSEventTrackingRunLoopMode;
extern NSRunLoopMode const NSModalPanelRunLoopMode;

@interface NSArray<Object> : NSObject
+ (instancetype)arrayWithObjects:(Object)first, ... __attribute__((sentinel(0, 1)));
- (Object)objectAtIndex:(NSUInteger)index;
- (NSUInteger)countByEnumeratingWithState:(void*)state objects:(id*)buffer count:(NSUInteger)length;
@end

enum NSActivityOptions : unsigned long long { NSActivityUserInitiatedAllowingIdleSystemSleep = 0xEFFFFF };

@interface NSProcessInfo : NSObject
+ (NSProcessInfo*)processInfo;
- (id)beginActivityWithOptions:(NSActivityOptions)options reason:(NSString*)reason SINCE(10.9);
@end

@interface NSApplication : NSObject
+ (NSApplication*)sharedApplication;
@end
extern "C" int NSApplicationMain(int argc, const char* argv[]);

@interface NSColor : NSObject
+ (NSColor*)blackColor;
+ (NSColor*)selectedMenuItemTextColor;
+ (NSColor*)labelColor SINCE(10.10);
+ (NSColor*)separatorColor SINCE(10.14);
+ (NSColor*)controlAccentColor SINCE(10.14);
- (void)set;
@end

@interface NSBezierPath : NSObject
+ (NSBezierPath*)bezierPathWithRoundedRect:(NSRect)rect xRadius:(CGFloat)x yRadius:(CGFloat)y;
- (void)fill;
@end

enum NSImageResizingMode : NSInteger { NSImageResizingModeTile, NSImageResizingModeStretch };

@interface NSImage : NSObject
+ (NSImage*)imageWithSize:(NSSize)size flipped:(BOOL)flipped drawingHandler:(BOOL (^)(NSRect rect))draw;
- (void)setCapInsets:(NSEdgeInsets)insets SINCE(10.10);
- (void)setResizingMode:(NSImageResizingMode)mode SINCE(10.10);
- (void)setTemplate:(BOOL)isTemplate;
@end

enum : NSUInteger { NSViewWidthSizable = 2, NSViewHeightSizable = 16 };
enum NSWindowOrderingMode : NSInteger { NSWindowAbove = 1, NSWindowBelow = -1, NSWindowOut = 0 };

@interface NSView : NSObject
- (instancetype)initWithFrame:(NSRect)frame;
- (NSArray<NSView*>*)subviews;
- (NSRect)bounds;
- (void)setFrame:(NSRect)frame;
- (BOOL)isHidden;
- (void)setHidden:(BOOL)hidden;
- (void)setNeedsDisplay:(BOOL)needsDisplay;
- (void)setAutoresizingMask:(NSUInteger)mask;
- (void)addSubview:(NSView*)view positioned:(NSWindowOrderingMode)place relativeTo:(NSView*)other;
- (void)viewWillDraw;
- (void)setAccessibilityLabel:(NSString*)label SINCE(10.10);
- (void)setToolTip:(NSString*)text;
@end

@interface NSTextField : NSView
@end

enum NSVisualEffectMaterial : NSInteger { NSVisualEffectMaterialSelection = 4 };
enum NSVisualEffectBlendingMode : NSInteger { NSVisualEffectBlendingModeBehindWindow };
enum NSVisualEffectState : NSInteger { NSVisualEffectStateActive = 1 };

SINCE(10.10) @interface NSVisualEffectView : NSView
- (void)setMaterial:(NSVisualEffectMaterial)material;
- (void)setBlendingMode:(NSVisualEffectBlendingMode)mode;
- (void)setState:(NSVisualEffectState)state;
- (void)setMaskImage:(NSImage*)image;
- (void)setEmphasized:(BOOL)emphasized SINCE(10.12);
@end

@interface NSWorkspace : NSObject
+ (NSWorkspace*)sharedWorkspace;
- (BOOL)accessibilityDisplayShouldIncreaseContrast SINCE(10.10);
@end

@interface NSMenuItem : NSObject
@end

@interface NSMenu : NSObject
- (NSString*)title;
@end

@interface NSStatusBarButton : NSView
- (void)setImage:(NSImage*)image;
@end

extern const CGFloat NSVariableStatusItemLength;
@interface NSStatusItem : NSObject
- (NSStatusBarButton*)button SINCE(10.10);
- (void)setMenu:(NSMenu*)menu;
@end

@interface NSStatusBar : NSObject
+ (NSStatusBar*)systemStatusBar;
- (NSStatusItem*)statusItemWithLength:(CGFloat)length;
- (void)removeStatusItem:(NSStatusItem*)item;
@end
