// The platform-specific parts: the screen, the main loop, the menu and its status item.
#pragma once

#import <AppKit/AppKit.h>

namespace Kest::AppKit {

/// Creates `NSApp`. Returns false and prints one line to standard error if there is no screen. Call it before
/// all other functions of AppKit. Main thread.
bool connectToScreen();
/// Runs the main loop until `NSApp` terminates, which ends the process: this function does not return. On the
/// Mac, first begins an activity, which prevents App Nap but does not keep the Mac awake. App Nap would delay
/// the timers of an agent without windows. Main thread.
int runApplication(int argc, const char** argv);

/// Shows the menu: on the Mac in the menu bar as a status item with the logo, with GNUstep as the main menu
/// of the application. Returns an object for `removeStatusItem`, which must be called once. Main thread.
[[nodiscard]] id showStatusItem(NSMenu* menu, NSImage* logo);
/// Removes the menu from the screen. `item` is the result of `showStatusItem`; do not use it afterwards. Main
/// thread.
void removeStatusItem(id item);

/// Returns the class for menu items: on the Mac NSMenuItem, with GNUstep a subclass that keeps and draws
/// attributed titles. Main thread.
Class menuItemClass();
/// Returns the class for menus: on the Mac NSMenu, with GNUstep a subclass. If a menu of the subclass is a
/// submenu, it sends its delegate `menuWillOpen:` when it opens and `menuDidClose:` when it closes.
Class menuClass();

/// Returns the run-loop modes in which the main loop runs the agent's jobs: the default mode and those in
/// which a menu or a modal panel is open. Autoreleased.
inline NSArray* workingModes()
{
    return [NSArray
        arrayWithObjects:NSDefaultRunLoopMode, NSEventTrackingRunLoopMode, NSModalPanelRunLoopMode, nil];
}

} // namespace Kest::AppKit
