// The settings agent in a terminal.
#include "app/KestSettingsAppDelegate.h"
#include "platform/posix/RunAlone.h"
#include "platform/terminal/TextFrontEnd.h"
#include "platform/terminal/TextWorkspace.h"

namespace {

int runInTerminal(const Kest::Settings::SystemPaths& paths)
{
    Kest::Terminal::TextFrontEnd frontEnd;
    Kest::Terminal::TextWorkspace workspace;
    Kest::App::KestSettingsAppDelegate delegate(frontEnd, workspace, paths);
    delegate.awakeFromNib();
    delegate.applicationDidFinishLaunching();
    frontEnd.run(delegate);
    delegate.applicationWillTerminate();
    return 0;
}

} // namespace

int main() { return Kest::Posix::runAlone(runInTerminal); }
