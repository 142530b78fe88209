// Platform-specific parts: the screen, the main loop, the menu and its status item.
#pragma once

#import <AppKit/AppKit.h>

namespace Kest::AppKit {

/// Returns false, with one line on standard error, if there is no screen. Call it before any other part of
/// AppKit. Main thread.
bool connectToScreen();
/// Runs the application until it terminates, which ends the process. Main thread. On the Mac it begins an
/// activity: App Nap would delay the timers of an agent without windows, and so the monitor's pass each
/// second. The Mac may still sleep.
int runApplication(int argc, const char** argv);

/// Shows the menu at the system's position for such menus, until `removeStatusItem`. Main thread.
[[nodiscard]] id showStatusItem(NSMenu* menu, NSImage* logo);
/// Removes and releases the item. Main thread.
void removeStatusItem(id item);

/// Returns NSMenuItem, or a subclass that adds what GNUstep's lacks.
Class menuItemClass();
/// Returns NSMenu, or a subclass that sends its delegate the messages that GNUstep's does not send.
Class menuClass();

/// Returns the run-loop modes in which the main thread runs jobs: also while a menu or a panel is open.
inline NSArray* workingModes()
{
    return [NSArray
        arrayWithObjects:NSDefaultRunLoopMode, NSEventTrackingRunLoopMode, NSModalPanelRunLoopMode, nil];
}

} // namespace Kest::AppKit
