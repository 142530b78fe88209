#import "platform/appkit/ApplicationDelegate.h"

#include "app/KestSettingsAppDelegate.h"
#include "platform/appkit/Boundary.h"

@implementation KestApplicationDelegate

- (id)initWithApplication:(Kest::App::KestSettingsAppDelegate*)ofApplication
{
    self = [super init];
    if (self != nil)
        application = ofApplication;
    return self;
}

- (void)applicationDidFinishLaunching:(NSNotification*)notification
{
    Kest::AppKit::stopExceptions("launching", [&] { application->applicationDidFinishLaunching(); });
}

- (void)applicationWillTerminate:(NSNotification*)notification
{
    Kest::AppKit::stopExceptions("terminating", [&] { application->applicationWillTerminate(); });
}

@end
