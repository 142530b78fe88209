// Executes the requests of clients.
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

/// Main thread only, except `watchers`. All references outlive it.
class MenuCommands {
public:
    MenuCommands(App::KestSettingsAppDelegate& application, Outbox& replies)
        : delegate(application), outbox(replies)
    {}

    /// Executes a request and replies once. The reply to `choose` is sent after its effects: the settings
    /// file is saved and the host informed, or an abort has ended.
    void run(const Request& request, ClientId client);

    void menuChanged(const App::MenuChanges& changes);
    void abortEnded(int pid, const std::string& failure);

    /// The number of watching clients: incremented here, decremented by the server's thread.
    std::atomic<int>& watchers() { return watching; }

private:
    struct RunningAbort {
        int pid;
        ClientId client;
    };
    App::FoundItem find(App::ItemSnapshot& menu, const std::string& path);
    void openAll();
    /// Opens the menus that contain the item, since some are filled when they open.
    void openMenusOf(App::ItemId id);
    void get(const std::string& path, ClientId client);
    void choose(const Request& request, ClientId client);
    void perform(const App::FoundItem& found, ClientId client);
    /// Returns why the abort of the item's encoding is not running after it was chosen; empty if it is.
    std::string whyNotAborting(App::ItemId id) const;

    App::KestSettingsAppDelegate& delegate;
    Outbox& outbox;
    std::atomic<int> watching = 0;
    std::vector<RunningAbort> aborts;
};

} // namespace Kest::Control
