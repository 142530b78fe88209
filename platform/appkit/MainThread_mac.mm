// The Mac's main thread, with its main queue.
#import "platform/appkit/MainThread.h"

#include <dispatch/dispatch.h>

namespace Kest::AppKit {

bool connectToScreen() { return [NSApplication sharedApplication] != nil; }

int runApplication(int argc, const char** argv)
{
    [[[NSProcessInfo processInfo] beginActivityWithOptions:NSActivityUserInitiatedAllowingIdleSystemSleep
                                                    reason:@"Follows the host service"] retain];
    return NSApplicationMain(argc, argv);
}

// The main queue is worked on in all common modes.
void callOnMainThread(void (*function)(void*), void* context)
{
    dispatch_async_f(dispatch_get_main_queue(), context, function);
}

} // namespace Kest::AppKit
