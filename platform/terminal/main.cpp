// The settings agent in a terminal.
#include "app/KestSettingsAppDelegate.h"
#include "backend/AgentLock.h"
#include "platform/terminal/TextFrontEnd.h"
#include "platform/terminal/TextWorkspace.h"

#include <cstdio>

int main()
{
    std::setvbuf(stdout, nullptr, _IOLBF, 0); // each line is seen when it is printed
    const Kest::Settings::SystemPaths paths;
    const Kest::Settings::AgentLock lock(paths.absoluteSettingsFolder());
    if (lock.isHeldByAnother()) {
        std::printf("Kest Settings is already running.\n");
        return 0;
    }

    Kest::Terminal::TextFrontEnd frontEnd;
    Kest::Terminal::TextWorkspace workspace;
    Kest::App::KestSettingsAppDelegate delegate(frontEnd, workspace, paths);
    delegate.awakeFromNib();
    delegate.applicationDidFinishLaunching();
    frontEnd.run(delegate);
    delegate.applicationWillTerminate();
    return 0;
}
