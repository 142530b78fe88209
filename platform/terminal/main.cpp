// The settings agent in a terminal.
#include "app/KestSettingsAppDelegate.h"
#include "backend/AgentLock.h"
#include "platform/terminal/FullScreenFrontEnd.h"
#include "platform/terminal/Screen.h"
#include "platform/terminal/TextFrontEnd.h"
#include "platform/terminal/TextWorkspace.h"

#include <clocale>
#include <cstdio>

namespace {

template <typename FrontEnd>
void runAgent(FrontEnd& frontEnd, const Kest::Settings::SystemPaths& paths)
{
    Kest::Terminal::TextWorkspace workspace;
    Kest::App::KestSettingsAppDelegate delegate(frontEnd, workspace, paths);
    delegate.awakeFromNib();
    delegate.applicationDidFinishLaunching();
    frontEnd.run(delegate);
    delegate.applicationWillTerminate();
}

} // namespace

int main()
{
    std::setlocale(LC_CTYPE, "");             // the terminal's characters; numbers stay as files have them
    std::setvbuf(stdout, nullptr, _IOLBF, 0); // each line is seen when it is printed
    const Kest::Settings::SystemPaths paths;
    const Kest::Settings::AgentLock lock(paths.absoluteSettingsFolder());
    if (lock.isHeldByAnother()) {
        std::printf("Kest Settings is already running.\n");
        return 0;
    }

    if (const auto screen = Kest::Terminal::Screen::open()) {
        Kest::Terminal::FullScreenFrontEnd frontEnd(*screen);
        runAgent(frontEnd, paths);
    } else {
        Kest::Terminal::TextFrontEnd frontEnd;
        runAgent(frontEnd, paths);
    }
    return 0;
}
