// The interfaces that each platform implements for the application.
#pragma once

#include "app/About.h"
#include "app/MenuChanges.h"
#include "log/Log.h"

#include <functional>
#include <string>
#include <vector>

namespace Kest::App {

/// Draws the menu and runs the main loop. Calls `KestSettingsAppDelegate` for each chosen item and for each
/// submenu about to open; decides nothing itself.
class FrontEnd {
public:
    virtual ~FrontEnd() = default;

    /// Shows the item that opens the menu, with the image of that name. Called once, first. Main thread.
    virtual void showStatusItem(const std::string& imageName) = 0;
    /// Runs a job on the main thread, later and in order; drops it if the loop has ended. Any thread.
    virtual void post(std::function<void()> job) = 0;
    /// Called once per batch of changes to the model, more often under load. Main thread.
    virtual void menuChanged(const MenuChanges& changes) = 0;
    /// Called when `KestSettingsAppDelegate::hostState` has changed and the menu is updated. Main thread.
    virtual void hostChanged() {}
    /// Ends the loop. Main thread.
    virtual void quit() = 0;
};

/// Services of the desktop. Main thread only; no function waits for a program that it starts.
class Workspace {
public:
    virtual ~Workspace() = default;

    /// Starts a program by its path. Returns false if it could not be started.
    virtual bool run(const std::string& program, const std::vector<std::string>& arguments) = 0;
    /// Starts an application by its path. Returns false if there is none.
    virtual bool launchApplication(const std::string& path) = 0;
    /// Shows a folder in the file manager: selected in its parent folder.
    virtual void selectFile(const std::string& folder) = 0;
    /// Returns whether there is an about panel. Without one, the menu shows its text in a submenu.
    virtual bool hasAboutPanel() const { return true; }
    virtual void showAboutPanel(const About& about) = 0;
    /// Writes one line to the log of the desktop; by default to the agent's own.
    virtual void log(const std::string& line) { Lct::Log(Lct::eLogError, "desktop", "%s", line.c_str()); }
};

} // namespace Kest::App
