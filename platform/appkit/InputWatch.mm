#import "platform/appkit/InputWatch.h"

#include "platform/appkit/Boundary.h"
#import "platform/appkit/System.h"

#include <utility>

@interface KestInputObserver : NSObject {
@public
    std::function<void()> readable;
    NSFileHandle* input;
}
- (void)wait;
- (void)inputIsReadable:(NSNotification*)notification;
- (void)stop;
@end

@implementation KestInputObserver

- (void)wait
{
    [input waitForDataInBackgroundAndNotifyForModes:Kest::AppKit::workingModes()];
}

- (void)inputIsReadable:(NSNotification*)notification
{
    @autoreleasepool { // the loop may drain its own pool only with the next event
        Kest::AppKit::stopExceptions("the main loop", readable);
    }
    [self wait];
}

- (void)stop
{
    [[NSNotificationCenter defaultCenter] removeObserver:self];
    [input release];
    input = nil;
}

@end

namespace Kest::AppKit {

InputWatch::InputWatch(int descriptor, std::function<void()> readable)
    : observer([[KestInputObserver alloc] init])
{
    observer->readable = std::move(readable);
    observer->input = [[NSFileHandle alloc] initWithFileDescriptor:descriptor closeOnDealloc:NO];
    [[NSNotificationCenter defaultCenter] addObserver:observer
                                             selector:@selector(inputIsReadable:)
                                                 name:NSFileHandleDataAvailableNotification
                                               object:observer->input];
    [observer wait];
}

InputWatch::~InputWatch()
{
    [observer stop];
    [observer release];
}

} // namespace Kest::AppKit
