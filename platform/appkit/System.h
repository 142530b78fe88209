// Platform-specific parts: the screen, the main loop, the menu and its status item.
#pragma once

#import <AppKit/AppKit.h>

namespace Kest::AppKit {

/// Main thread, before all else of AppKit. False, with one line on standard error, when there is no screen.
bool connectToScreen();
/// Main thread. Runs the application until it terminates, which ends the process. On the Mac it holds an
/// activity: App Nap would delay the timers of an agent without windows, and with them the monitor's pass
/// each second. The Mac may still sleep.
int runApplication(int argc, const char** argv);

/// Main thread. Shows the menu where the system has such menus, until `removeStatusItem`.
[[nodiscard]] id showStatusItem(NSMenu* menu, NSImage* logo);
/// Main thread. Removes and releases it.
void removeStatusItem(id item);

/// NSMenuItem, or a subclass that adds what GNUstep's lacks.
Class menuItemClass();
/// NSMenu, or a subclass that sends its delegate what GNUstep's does not.
Class menuClass();

/// The run-loop modes in which the main thread works: also while a menu or a panel is open.
inline NSArray* workingModes()
{
    return [NSArray
        arrayWithObjects:NSDefaultRunLoopMode, NSEventTrackingRunLoopMode, NSModalPanelRunLoopMode, nil];
}

} // namespace Kest::AppKit
