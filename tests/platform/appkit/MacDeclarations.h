// AppKit declarations that the files *_mac.mm use and GNUstep's headers lack. The types and the first macOS
// releases (`SINCE`) are from Apple's documentation.
#import <AppKit/AppKit.h>
#import <AppKit/NSVisualEffectView.h>

#define SINCE(version) __attribute__((availability(macos, introduced = version)))

// Macros, because constants would conflict with those of a later GNUstep.
#define NSImageResizingModeStretch 1
#define NSVisualEffectMaterialSelection 4

@interface NSColor (Mac)
+ (NSColor*)separatorColor SINCE(10.14);
+ (NSColor*)controlAccentColor SINCE(10.14);
@end

@interface NSImage (Mac)
+ (NSImage*)imageWithSize:(NSSize)size flipped:(BOOL)flipped drawingHandler:(BOOL (^)(NSRect rect))draw;
- (void)setCapInsets:(NSEdgeInsets)insets SINCE(10.10);
- (void)setResizingMode:(NSInteger)mode SINCE(10.10);
- (void)setTemplate:(BOOL)isTemplate;
@end

@interface NSView (Mac)
- (void)viewWillDraw;
- (void)setAccessibilityLabel:(NSString*)label SINCE(10.10);
@end

@interface NSVisualEffectView (Mac)
- (void)setEmphasized:(BOOL)emphasized SINCE(10.12);
@end

@interface NSWorkspace (Mac)
- (BOOL)accessibilityDisplayShouldIncreaseContrast SINCE(10.10);
@end

@interface NSStatusItem (Mac)
- (NSStatusBarButton*)button SINCE(10.10);
@end
