// The front end for Linux desktops: an item in the panel. A click on the item opens the menu.
#pragma once

#include "app/FrontEnd.h"
#include "platform/posix/JobQueue.h"
#include "platform/statusnotifier/Bus.h"
#include "platform/statusnotifier/MenuExporter.h"
#include "platform/statusnotifier/StatusItem.h"

#include <optional>

namespace Kest::App {
class KestSettingsAppDelegate;
}

namespace Kest::StatusNotifier {

/// Main thread only, except `post`.
class TrayFrontEnd final : public App::FrontEnd {
public:
    /// Starts to connect to the user's session bus, without waiting. If the connection cannot be started,
    /// prints one line to standard error. In that case, `bus` returns null and `run` must not be called.
    TrayFrontEnd();

    sd_bus* bus() const { return sessionBus.get(); }

    /// Exports the item and the menu, and runs until `quit` is called; then returns true. Returns false and
    /// prints one line to standard error if the bus refuses the item, the connection to the bus fails, or the
    /// main loop fails.
    bool run(App::KestSettingsAppDelegate& application);

    void showStatusItem(const std::string&) override {} // no effect: `run` shows the item with its menu
    void post(std::function<void()> job) override { wakeUps.post(std::move(job)); }
    void menuChanged(const App::MenuChanges& changes) override;
    void quit() override { end(kQuit); }

private:
    // Results of the event loop. sd-bus ends the loop with 1 when the connection is lost.
    static constexpr int kQuit = 0;
    static constexpr int kBusLost = 1;
    static constexpr int kFailed = 2; // the failure is printed already

    int connect();
    void start(App::KestSettingsAppDelegate& application);
    int exportMenu(App::KestSettingsAppDelegate& application);
    void end(int reason);
    void fail(int result);
    static void fillAllSubmenus(App::KestSettingsAppDelegate& application);
    static int onWakeUp(sd_event_source* source, int descriptor, std::uint32_t events, void* frontEnd);
    static int onDispatched(sd_event_source* source, void* frontEnd);

    Posix::JobQueue wakeUps;
    EventPtr event;
    BusPtr sessionBus;
    std::optional<MenuExporter> exporter;
    std::optional<StatusItem> item;
};

} // namespace Kest::StatusNotifier
