// What the application asks of the platform that it runs on.
#pragma once

#include "app/About.h"
#include "app/MenuChanges.h"
#include "log/Log.h"

#include <functional>
#include <string>
#include <vector>

namespace Kest::App {

/// Draws the menu and runs the main loop. Hands back what was chosen and what is about to open through
/// `KestSettingsAppDelegate`; decides nothing itself.
class FrontEnd {
public:
    virtual ~FrontEnd() = default;

    /// Main thread, once, before anything else: shows the handle on the menu, with an image of that name.
    virtual void showStatusItem(const std::string& imageName) = 0;
    /// Any thread. Runs a job on the main thread, later and in order; drops it when the loop has ended.
    virtual void post(std::function<void()> job) = 0;
    /// Main thread, once in each of its jobs but in a flood: the model has changed.
    virtual void menuChanged(const MenuChanges& changes) = 0;
    /// Main thread: `KestSettingsAppDelegate::hostState` has changed, after the menu was updated for it.
    virtual void hostChanged() {}
    /// Main thread: ends the loop.
    virtual void quit() = 0;
};

/// Services of the desktop. Main thread only; none waits for a program that it starts.
class Workspace {
public:
    virtual ~Workspace() = default;

    /// Starts a program by its path. False when it could not be started.
    virtual bool run(const std::string& program, const std::vector<std::string>& arguments) = 0;
    /// False when there is no such application.
    virtual bool launchApplication(const std::string& path) = 0;
    /// Shows a folder where the user looks at files, selected in the folder that it is in.
    virtual void selectFile(const std::string& folder) = 0;
    /// Where there is none, the menu itself tells what it would.
    virtual bool hasAboutPanel() const { return true; }
    virtual void showAboutPanel(const About& about) = 0;
    /// One line in the log of the desktop; without one, in the agent's own.
    virtual void log(const std::string& line) { Lct::Log(Lct::eLogError, "desktop", "%s", line.c_str()); }
};

} // namespace Kest::App
