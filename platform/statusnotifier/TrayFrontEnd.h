// The front end of Linux desktops: an item in the panel that opens the menu.
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
    /// Starts to connect to the user's session bus, without waiting. On failure prints one line to standard
    /// error, and `bus()` is null.
    TrayFrontEnd();

    sd_bus* bus() const { return sessionBus.get(); }

    /// Shows the item and runs until `quit`. Returns false, with one line on standard error, if the item
    /// could not be put on the bus or the bus has ended.
    bool run(App::KestSettingsAppDelegate& application);

    void showStatusItem(const std::string&) override {} // the item appears with its menu, in `run`
    void post(std::function<void()> job) override { wakeUps.post(std::move(job)); }
    void menuChanged(const App::MenuChanges& changes) override;
    void quit() override { end(kQuit); }

private:
    // Results of the event loop; sd-bus ends it with 1 when the connection is lost.
    static constexpr int kQuit = 0;
    static constexpr int kBusLost = 1;
    static constexpr int kFailed = 2; // already reported

    int connect();
    void start(App::KestSettingsAppDelegate& application);
    int exportMenu(App::KestSettingsAppDelegate& application);
    void end(int reason);
    void fail(int result);
    static void openAll(App::KestSettingsAppDelegate& application);
    static int onWakeUp(sd_event_source* source, int descriptor, std::uint32_t events, void* frontEnd);
    static int onDispatched(sd_event_source* source, void* frontEnd);

    Posix::JobQueue wakeUps;
    EventPtr event;
    BusPtr sessionBus;
    std::optional<MenuExporter> exporter;
    std::optional<StatusItem> item;
};

} // namespace Kest::StatusNotifier
