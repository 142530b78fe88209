// The platform-specific parts: the screen, the main loop, the menu and its status item.
#pragma once

#import <AppKit/AppKit.h>

namespace Kest::AppKit {

/// Creates the application object. Returns false and prints one line to standard error if there is no screen.
/// Call it before all other functions of AppKit. Main thread.
bool connectToScreen();
/// Runs the main loop until the application terminates, which ends the process. On the Mac, first begins an
/// activity, which prevents App Nap but does not keep the Mac awake. App Nap would delay the timers of an
/// agent without windows, and therefore the monitor, which runs each second. Main thread.
int runApplication(int argc, const char** argv);

/// Shows the menu: on the Mac in the menu bar as a status item with the logo, with GNUstep as the main menu
/// of the application. Returns an object to pass to `removeStatusItem` at the end. Main thread.
[[nodiscard]] id showStatusItem(NSMenu* menu, NSImage* logo);
/// Removes and releases the item that `showStatusItem` has returned. Main thread.
void removeStatusItem(id item);

/// Returns the class for menu items: NSMenuItem, or with GNUstep a subclass that keeps and draws attributed
/// titles. Main thread.
Class menuItemClass();
/// Returns the class for menus: NSMenu, or with GNUstep a subclass that also sends `menuWillOpen:` and
/// `menuDidClose:` to its delegate.
Class menuClass();

/// Returns the run-loop modes in which the main thread runs jobs. They include those in which a menu or a
/// panel is open. Autoreleased.
inline NSArray* workingModes()
{
    return [NSArray
        arrayWithObjects:NSDefaultRunLoopMode, NSEventTrackingRunLoopMode, NSModalPanelRunLoopMode, nil];
}

} // namespace Kest::AppKit
