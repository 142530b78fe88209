// The front end of Linux desktops: an item in the panel with the menu behind it.
#pragma once

#include "app/FrontEnd.h"
#include "platform/posix/MainLoop.h"
#include "platform/statusnotifier/Bus.h"
#include "platform/statusnotifier/MenuExporter.h"
#include "platform/statusnotifier/StatusItem.h"

#include <optional>

namespace Kest::App {
class KestSettingsAppDelegate;
}

namespace Kest::StatusNotifier {

/// Main thread only, but for `post`.
class TrayFrontEnd final : public App::FrontEnd {
public:
    /// On the user's session bus. `bus()` is null when there is none.
    TrayFrontEnd();

    sd_bus* bus() const { return sessionBus.get(); }

    /// Shows the item and runs until it is asked to quit or the session bus goes. False, with one line on
    /// standard error, when the item cannot be put on the bus.
    bool run(App::KestSettingsAppDelegate& application);

    void showStatusItem(const std::string&) override {} // the item appears with its menu, in `run`
    void post(std::function<void()> job) override { wakeUps.post(std::move(job)); }
    void menuChanged(const App::MenuChanges& changes) override;
    void quit() override { sd_event_exit(event.get(), 0); }

private:
    bool exportTo(App::KestSettingsAppDelegate& application);
    static void openAll(App::KestSettingsAppDelegate& application);
    static int onWakeUp(sd_event_source* source, int descriptor, std::uint32_t events, void* frontEnd);

    Posix::MainLoop wakeUps;
    EventPtr event;
    BusPtr sessionBus;
    std::optional<MenuExporter> exporter;
    std::optional<StatusItem> item;
};

} // namespace Kest::StatusNotifier
