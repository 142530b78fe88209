// What AppKit tells the application of its life.
#pragma once

#import <AppKit/AppKit.h>

namespace Kest::App {
class KestSettingsAppDelegate;
}

/// Hands the events on. Main thread only.
@interface KestApplicationDelegate : NSObject {
@private
    Kest::App::KestSettingsAppDelegate* application;
}
/// The application outlives it.
- (id)initWithApplication:(Kest::App::KestSettingsAppDelegate*)ofApplication;
- (void)applicationDidFinishLaunching:(NSNotification*)notification;
- (void)applicationWillTerminate:(NSNotification*)notification;
@end
