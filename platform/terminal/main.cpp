// The settings agent in a terminal.
#include "app/KestSettingsAppDelegate.h"
#include "platform/posix/RunAlone.h"
#include "platform/terminal/FullScreenFrontEnd.h"
#include "platform/terminal/Screen.h"
#include "platform/terminal/TextFrontEnd.h"
#include "platform/terminal/TextWorkspace.h"

#include <clocale>

namespace {

template <typename FrontEnd>
void runWith(FrontEnd& frontEnd, Kest::Posix::Streams streams, const Kest::Settings::SystemPaths& paths)
{
    Kest::Terminal::TextWorkspace workspace(streams);
    Kest::App::KestSettingsAppDelegate delegate(frontEnd, workspace, paths);
    delegate.awakeFromNib();
    delegate.applicationDidFinishLaunching();
    frontEnd.run(delegate);
    delegate.applicationWillTerminate();
}

int runInTerminal(const Kest::Settings::SystemPaths& paths)
{
    if (const auto screen = Kest::Terminal::Screen::open()) {
        Kest::Terminal::FullScreenFrontEnd frontEnd(*screen);
        runWith(frontEnd, Kest::Posix::Streams::none, paths);
    } else {
        Kest::Terminal::TextFrontEnd frontEnd;
        runWith(frontEnd, Kest::Posix::Streams::inherited, paths);
    }
    return 0;
}

} // namespace

int main()
{
    std::setlocale(LC_CTYPE, ""); // the terminal's characters; numbers stay as files have them
    return Kest::Posix::runAlone(runInTerminal);
}
