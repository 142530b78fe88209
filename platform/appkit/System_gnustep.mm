// The parts for GNUstep: the screen may be missing, and there is no bundle and no status bar. GNUstep's menu
// items do not keep an attributed title and would not draw it. Its menus send their delegate
// `menuNeedsUpdate:` before they are displayed, but nothing when they have opened or closed.
#include "log/Output.h"
#import "platform/appkit/MenuBridge.h"
#import "platform/appkit/System.h"

#include <objc/runtime.h>

@interface KestMenuItem : NSMenuItem {
@private
    NSAttributedString* keptTitle;
}
@end

@implementation KestMenuItem

- (void)dealloc
{
    [keptTitle release];
    [super dealloc];
}

- (NSAttributedString*)attributedTitle
{
    return keptTitle;
}

- (void)setAttributedTitle:(NSAttributedString*)title
{
    [keptTitle autorelease];
    keptTitle = [title copy];
    [[self menu] itemChanged:self];
}

@end

@interface KestMenu : NSMenu
@end

@implementation KestMenu

- (void)display
{
    [super display];
    if ([self supermenu] != nil) // the main menu is always displayed
        [(KestMenuBridge*)[self delegate] menuWillOpen:self];
}

- (void)close
{
    [super close];
    if ([self supermenu] != nil)
        [(KestMenuBridge*)[self delegate] menuDidClose:self];
}

@end

namespace Kest::AppKit {
namespace {

using DrawTitle = void (*)(NSMenuItemCell* cell, SEL command, NSRect frame, NSView* view);
DrawTitle drawPlainTitle = nullptr;

void drawTitle(NSMenuItemCell* cell, SEL command, NSRect frame, NSView* view)
{
    NSAttributedString* title = [[cell menuItem] attributedTitle];
    if (title == nil)
        return drawPlainTitle(cell, command, frame, view);
    NSRect titleRect = [cell titleRectForBounds:frame];
    const CGFloat height = [title size].height;
    titleRect.origin.y += (titleRect.size.height - height) / 2;
    titleRect.size.height = height;
    [title drawInRect:titleRect];
}

void drawAttributedTitles()
{
    Method method = class_getInstanceMethod([NSMenuItemCell class], @selector(drawTitleWithFrame:inView:));
    drawPlainTitle =
        reinterpret_cast<DrawTitle>(method_setImplementation(method, reinterpret_cast<IMP>(drawTitle)));
}

} // namespace

bool connectToScreen()
{
    @try {
        return [NSApplication sharedApplication] != nil;
    } @catch (NSException* failure) {
        Lct::printError(
            "no screen (%s) -> start kest-settings-terminal, which shows the same menu in a terminal\n",
            [[failure reason] UTF8String]);
        return false;
    }
}

// Not NSApplicationMain, which first reads the bundle's description.
int runApplication(int, const char**)
{
    [NSApp run];
    return 0;
}

// Shows the menu as the application's main menu.
id showStatusItem(NSMenu* menu, NSImage* logo)
{
    [NSApp setApplicationIconImage:logo];
    [NSApp setMainMenu:menu];
    return menu;
}

void removeStatusItem(id) { [NSApp setMainMenu:nil]; }

Class menuItemClass()
{
    if (drawPlainTitle == nullptr)
        drawAttributedTitles();
    return [KestMenuItem class];
}

Class menuClass() { return [KestMenu class]; }

} // namespace Kest::AppKit
