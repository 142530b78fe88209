// The interfaces that each platform implements for the application.
#pragma once

#include "app/About.h"
#include "app/MenuChanges.h"
#include "log/Log.h"

#include <functional>
#include <string>
#include <vector>

namespace Kest::App {

/// Draws the menu and runs the main loop. Calls `choose` of the application, which is
/// `KestSettingsAppDelegate`, for each item that the user chooses, and `menuWillOpen` before a submenu is
/// shown.
class FrontEnd {
public:
    virtual ~FrontEnd() = default;

    /// Shows the status item, the icon that opens the menu. `imageName` is the name of its image. Called
    /// once, before all other functions except `post`. Main thread.
    virtual void showStatusItem(const std::string& imageName) = 0;
    /// Queues a job for the main thread, which runs jobs in the order of these calls. Jobs that have not run
    /// when the main loop ends are dropped. Any thread.
    virtual void post(std::function<void()> job) = 0;
    /// Called after each event that changed the menu, for example a choice. `changes` contains the changes
    /// since the previous call. If one event makes more than 2000 changes, may also be called before the
    /// event ends, so that the records of the changes use limited memory. Main thread.
    virtual void menuChanged(const MenuChanges& changes) = 0;
    /// Called after the application's `hostState` has changed. Does nothing by default. Main thread.
    virtual void hostChanged() {}
    /// Ends the main loop. Main thread.
    virtual void quit() = 0;
};

/// Services of the desktop. Main thread only. No function waits for a program that it starts.
class Workspace {
public:
    virtual ~Workspace() = default;

    /// Starts the executable file at the path `program`. Returns false if it could not be started.
    virtual bool run(const std::string& program, const std::vector<std::string>& arguments) = 0;
    /// Starts the application at `path`: a bundle on macOS, an executable file elsewhere. Returns false if it
    /// could not be started.
    virtual bool launchApplication(const std::string& path) = 0;
    /// Shows the parent folder of `folder` in the file manager, with `folder` selected.
    virtual void selectFile(const std::string& folder) = 0;
    /// Returns whether the desktop has an about panel. If not, the menu contains the about text in a submenu.
    virtual bool hasAboutPanel() const { return true; }
    virtual void showAboutPanel(const About& about) = 0;
    /// Writes one line to the desktop's log; by default, to the agent's log.
    virtual void log(const std::string& line) { Lct::Log(Lct::eLogError, "desktop", "%s", line.c_str()); }
};

} // namespace Kest::App
