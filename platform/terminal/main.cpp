// kest-settings-terminal: the settings agent in a terminal.
#include "app/KestSettingsAppDelegate.h"
#include "platform/control/ControlServer.h"
#include "platform/posix/CommandLine.h"
#include "platform/posix/SingleInstance.h"
#include "platform/terminal/FullScreenFrontEnd.h"
#include "platform/terminal/Screen.h"
#include "platform/terminal/TextFrontEnd.h"
#include "platform/terminal/TextWorkspace.h"

#include <clocale>

namespace {

template <typename FrontEnd>
int runWith(FrontEnd& frontEnd, Kest::Posix::Streams streams, const Kest::Settings::SystemPaths& paths)
{
    Kest::Terminal::TextWorkspace workspace(streams);
    Kest::App::KestSettingsAppDelegate delegate(frontEnd, workspace, paths);
    return Kest::Posix::runApplication(delegate, [&] {
        delegate.setObserver(Kest::Control::startServer(delegate, frontEnd, paths));
        return frontEnd.run(delegate);
    });
}

int runInTerminal(const Kest::Settings::SystemPaths& paths)
{
    if (const auto screen = Kest::Terminal::Screen::open()) {
        Kest::Terminal::FullScreenFrontEnd frontEnd(*screen);
        return runWith(frontEnd, Kest::Posix::Streams::none, paths);
    }
    Kest::Terminal::TextFrontEnd frontEnd;
    return runWith(frontEnd, Kest::Posix::Streams::inherited, paths);
}

} // namespace

int main(int argc, char** argv)
{
    if (const auto status = Kest::Posix::answerArguments(
            argc, argv,
            "Shows the K3DHost mixing system's settings in a terminal, full screen or as lines of text."))
        return *status;
    std::setlocale(LC_CTYPE, ""); // for the terminal's characters; numbers keep the format of files
    return Kest::Posix::runSingleInstance(runInTerminal,
                                          Kest::Terminal::TextFrontEnd::mayHaveScript() ? 1 : 0);
}
