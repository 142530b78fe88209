// Carries out what clients ask for.
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

/// Main thread only, but for `watchers`. All references outlive it.
class MenuCommands {
public:
    MenuCommands(App::KestSettingsAppDelegate& application, Outbox& replies)
        : delegate(application), outbox(replies)
    {}

    /// Carries a request out and replies once. The reply to a choice follows what the choice did: the
    /// settings file is saved and the host informed, and an abort has ended.
    void run(const Request& request, ClientId client);

    void menuChanged(const App::MenuChanges& changes);
    void abortEnded(int pid, const std::string& failure);

    /// How many clients watch. Counted up here, and down by who drops a connection.
    std::atomic<int>& watchers() { return watching; }

private:
    struct RunningAbort {
        int pid;
        ClientId client;
    };
    App::FoundItem find(App::ItemSnapshot& menu, const std::string& path);
    void openAll();
    /// The menus that the item is in; some are filled when they open.
    void openMenusOf(App::ItemId id);
    void get(const std::string& path, ClientId client);
    void choose(const Request& request, ClientId client);
    void perform(const App::FoundItem& found, ClientId client);
    /// Why the abort of the item's encoding is not running after it was chosen; else an empty text.
    std::string whyNotAborting(App::ItemId id) const;

    App::KestSettingsAppDelegate& delegate;
    Outbox& outbox;
    std::atomic<int> watching = 0;
    std::vector<RunningAbort> aborts;
};

} // namespace Kest::Control
