#import "platform/appkit/AppKitWorkspace.h"

#include "platform/appkit/Text.h"

#import <AppKit/AppKit.h>

namespace Kest::AppKit {

// The task throws if the program is missing or not executable.
bool AppKitWorkspace::run(const std::string& program, const std::vector<std::string>& arguments)
{
    NSMutableArray* argumentArray = [NSMutableArray array];
    for (const auto& argument : arguments)
        [argumentArray addObject:toNSString(argument)];
    NSTask* task = [[NSTask alloc] init];
    bool started = true;
    @try {
        [task setLaunchPath:toNSString(program)];
        [task setArguments:argumentArray];
        [task launch];
    } @catch (NSException*) {
        started = false;
    }
    [task release];
    return started;
}

#pragma clang diagnostic push
#pragma clang diagnostic ignored "-Wdeprecated-declarations" // the replacements take a block

bool AppKitWorkspace::launchApplication(const std::string& path)
{
    return [[NSWorkspace sharedWorkspace] launchApplication:toNSString(path)];
}

void AppKitWorkspace::selectFile(const std::string& folder)
{
    [[NSWorkspace sharedWorkspace] selectFile:toNSString(folder) inFileViewerRootedAtPath:@"/"];
}

void AppKitWorkspace::showAboutPanel(const App::About& about)
{
    [NSApp orderFrontStandardAboutPanelWithOptions:[NSDictionary
                                                       dictionaryWithObjectsAndKeys:toNSString(about.name),
                                                                                    @"ApplicationName",
                                                                                    toNSString(about.version),
                                                                                    @"ApplicationVersion",
                                                                                    toNSString(about.licence),
                                                                                    @"Copyright", nil]];
    [NSApp activateIgnoringOtherApps:YES];
}

#pragma clang diagnostic pop

void AppKitWorkspace::log(const std::string& line) { NSLog(@"%@", toNSString(line)); }

} // namespace Kest::AppKit
