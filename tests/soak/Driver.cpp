// What no program of the agent's does by itself, for the tests in Python:
//
//   soak settings FOLDER [CHOICE]   a start with one choice of the solo mode, by default the one in the file;
//                                   prints it. Exit status 0 when saved, 3 when not
//   soak agent MICROSECONDS         the text agent whose monitor has that period
#include "app/KestSettingsAppDelegate.h"
#include "backend/SettingsFile.h"
#include "platform/control/ControlServer.h"
#include "platform/posix/SingleInstance.h"
#include "platform/terminal/TextFrontEnd.h"
#include "platform/terminal/TextWorkspace.h"

#include <cstdio>
#include <string>

namespace {

using namespace Kest;

int changeSettings(const std::string& folder, const char* choice)
{
    std::puts("begin"); // system calls are counted from here
    std::fflush(stdout);
    juce::ApplicationProperties properties;
    Settings::SystemPaths paths;
    paths.settingsFolder = folder;
    Settings::SettingsFile file(properties, paths);
    const int mode = choice != nullptr ? std::stoi(choice) : file.values().getIntValue("SoloMode", -1);
    const bool isSaved = file.save("SoloMode", mode) == Settings::SaveResult::saved && file.commit();
    std::printf("mode %d\n", mode);
    return isSaved ? 0 : 3;
}

int runAgent(const Settings::SystemPaths& paths, std::chrono::microseconds monitorPeriod)
{
    Terminal::TextFrontEnd frontEnd;
    Terminal::TextWorkspace workspace(Posix::Streams::none);
    App::KestSettingsAppDelegate delegate(frontEnd, workspace, paths, monitorPeriod);
    return Posix::runApplication(delegate, [&] {
        delegate.setObserver(Control::startServer(delegate, frontEnd, paths));
        return frontEnd.run(delegate);
    });
}

} // namespace

int main(int count, char** arguments)
{
    const std::string command = count > 2 ? arguments[1] : "";
    if (command == "settings")
        return changeSettings(arguments[2], arguments[3]);
    if (command != "agent")
        return 2;
    const std::chrono::microseconds period(std::stoi(arguments[2]));
    return Posix::runSingleInstance([&](const auto& paths) { return runAgent(paths, period); }, 1);
}
