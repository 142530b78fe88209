// Executes the clients' requests on the main thread.
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

/// Main thread only, except `watchers`. The application and the outbox must outlive this object.
class MenuCommands {
public:
    MenuCommands(App::KestSettingsAppDelegate& application, Outbox& replies)
        : delegate(application), outbox(replies)
    {}

    /// Executes a request and adds one reply for `client` to the outbox. The reply to `choose` is added after
    /// the item's action was performed: a changed setting is already saved and passed to K3DHost. If the
    /// action starts the abort of an encoding, `abortEnded` adds the reply instead.
    void run(const Request& request, ClientId client);

    /// Adds the events of `changes` for the clients that watch. The menu must already contain the changes.
    void menuChanged(const App::MenuChanges& changes);
    /// Call it when the abort of the encoder with process id `pid` has ended. Adds the reply to each request
    /// that started the abort. `failure` is the error text; empty if the abort is complete.
    void abortEnded(int pid, const std::string& failure);

    /// Returns the counter of clients that watch. `run` increments the counter, and the server's thread
    /// decrements it. Any thread.
    std::atomic<int>& watchers() { return watching; }

private:
    struct RunningAbort {
        int pid;
        ClientId client;
    };
    App::FoundItem find(App::ItemSnapshot& menu, const std::string& path);
    void fillAllSubmenus();
    /// Calls the application's `menuWillOpen`, which fills some submenus, for each submenu that contains the
    /// item.
    void fillMenusContaining(App::ItemId id);
    void get(const std::string& path, ClientId client);
    void choose(const Request& request, ClientId client);
    void perform(const App::FoundItem& found, ClientId client);
    /// Call it after `id`, an item that aborts an encoding, was chosen. Returns why the encoding is not being
    /// aborted; an empty text if it is.
    std::string abortProblem(App::ItemId id) const;

    App::KestSettingsAppDelegate& delegate;
    Outbox& outbox;
    std::atomic<int> watching = 0;
    std::vector<RunningAbort> aborts;
};

} // namespace Kest::Control
