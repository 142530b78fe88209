// Executes the requests of clients on the main thread.
#pragma once

#include "app/MenuSnapshot.h"
#include "platform/control/Outbox.h"
#include "platform/control/Request.h"

#include <atomic>
#include <vector>

namespace Kest::App {
class KestSettingsAppDelegate;
struct FoundItem;
} // namespace Kest::App

namespace Kest::Control {

/// Main thread only, except `watchers`. All references must outlive this object.
class MenuCommands {
public:
    MenuCommands(App::KestSettingsAppDelegate& application, Outbox& replies)
        : delegate(application), outbox(replies)
    {}

    /// Executes a request and adds one reply to the outbox. The reply to `choose` is added after the choice
    /// has its effect: the settings file is saved and the host informed. The reply to a chosen abort is added
    /// by `abortEnded`.
    void run(const Request& request, ClientId client);

    void menuChanged(const App::MenuChanges& changes);
    /// Adds the replies to the requests that chose this abort. `failure` is empty if the abort is complete.
    void abortEnded(int pid, const std::string& failure);

    /// Returns the number of clients that watch. `run` increments it, and the server's thread decrements it.
    /// Any thread.
    std::atomic<int>& watchers() { return watching; }

private:
    struct RunningAbort {
        int pid;
        ClientId client;
    };
    App::FoundItem find(App::ItemSnapshot& menu, const std::string& path);
    void fillAllSubmenus();
    /// Calls `menuWillOpen` for each submenu that contains the item, because some submenus are filled then.
    void fillMenusContaining(App::ItemId id);
    void get(const std::string& path, ClientId client);
    void choose(const Request& request, ClientId client);
    void perform(const App::FoundItem& found, ClientId client);
    /// Returns why no abort is running after the user chose the abort item `id`; an empty text if an abort is
    /// running.
    std::string abortProblem(App::ItemId id) const;

    App::KestSettingsAppDelegate& delegate;
    Outbox& outbox;
    std::atomic<int> watching = 0;
    std::vector<RunningAbort> aborts;
};

} // namespace Kest::Control
