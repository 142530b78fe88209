#include "platform/statusnotifier/TrayFrontEnd.h"

#include "app/KestSettingsAppDelegate.h"
#include "log/Output.h"

#include <cstring>
#include <filesystem>
#include <sys/epoll.h>

namespace Kest::StatusNotifier {
namespace {

// Returns the folder share/icons beside the folder of the program, in an installation and in a build.
std::string iconThemePath()
{
    std::error_code failure;
    const auto program = std::filesystem::read_symlink("/proc/self/exe", failure);
    return failure ? std::string() : (program.parent_path().parent_path() / "share/icons").string();
}

void reportNoTray()
{
    Lct::print("No tray on this desktop yet; the item appears as soon as there is one. "
               "kest-settings-terminal shows the same menu in a terminal.\n");
}

} // namespace

TrayFrontEnd::TrayFrontEnd()
{
    if (connect() >= 0)
        return;
    sessionBus.reset();
    Lct::printError("No session bus; kest-settings-terminal shows the same menu in a terminal.\n");
}

// Calls have no timeout by default: the bus daemon replies or ends, and a stopped one replies later.
int TrayFrontEnd::connect()
{
    int result = sd_event_new(Into(event));
    if (result >= 0)
        result = sd_bus_open_user(Into(sessionBus));
    if (result >= 0)
        result = sd_bus_set_method_call_timeout(bus(), UINT64_MAX);
    return result < 0 ? result : sd_bus_set_exit_on_disconnect(bus(), 1);
}

bool TrayFrontEnd::run(App::KestSettingsAppDelegate& application)
{
    start(application);
    const int reason = sd_event_loop(event.get());
    if (reason < 0)
        Lct::printError("The main loop has failed: %s\n", std::strerror(-reason));
    else if (reason == kBusLost)
        Lct::printError("The session bus has ended; the agent ends too.\n");
    item.reset();
    exporter.reset();
    return reason == kQuit;
}

// Quits if a signal has requested it before.
void TrayFrontEnd::start(App::KestSettingsAppDelegate& application)
{
    wakeUps.dispatchWakeUps(); // jobs of the start-up, so that panels read the complete menu
    if (wakeUps.isQuitting())
        return quit();
    fillAllSubmenus(application);
    if (const int result = exportMenu(application); result < 0)
        fail(result);
}

int TrayFrontEnd::exportMenu(App::KestSettingsAppDelegate& application)
{
    exporter.emplace(sessionBus.get(),
                     MenuCallbacks{application.menu(),
                                   [&application](App::ItemId id) { application.choose(id); },
                                   [&application](App::ItemId id) { application.menuWillOpen(id); },
                                   [this](std::function<void()> job) { post(std::move(job)); }});
    item.emplace(sessionBus.get(), iconThemePath(),
                 StatusItem::Callbacks{reportNoTray, [this] { exporter->resetPanels(); },
                                       [this](int result) { fail(result); }});
    int result = std::min(exporter->failure(), item->failure());
    if (result >= 0)
        result = sd_bus_attach_event(sessionBus.get(), event.get(), SD_EVENT_PRIORITY_NORMAL);
    if (result >= 0)
        result = sd_event_add_io(event.get(), nullptr, wakeUps.wakeUpDescriptor(), EPOLLIN, onWakeUp, this);
    return result < 0 ? result : sd_event_add_post(event.get(), nullptr, onDispatched, this);
}

// Detaches the bus: an attached one is flushed at the end, which waits while the bus does not read.
void TrayFrontEnd::end(int reason)
{
    sd_bus_detach_event(sessionBus.get());
    sd_event_exit(event.get(), reason);
}

void TrayFrontEnd::fail(int result)
{
    Lct::printError("Kest Settings cannot be exported on the session bus: %s\n", std::strerror(-result));
    end(kFailed);
}

// Fills all submenus: panels read the menu long before it opens, and some close an empty submenu on a change.
void TrayFrontEnd::fillAllSubmenus(App::KestSettingsAppDelegate& application)
{
    for (const auto& item : application.menu().statusMenu().itemArray())
        if (item->submenu() != nullptr)
            application.menuWillOpen(item->id());
}

void TrayFrontEnd::menuChanged(const App::MenuChanges& changes)
{
    if (exporter)
        exporter->menuChanged(changes);
}

int TrayFrontEnd::onWakeUp(sd_event_source*, int, std::uint32_t, void* frontEnd)
{
    auto& self = *static_cast<TrayFrontEnd*>(frontEnd);
    self.wakeUps.dispatchWakeUps();
    if (self.wakeUps.isQuitting())
        self.quit();
    return 0;
}

int TrayFrontEnd::onDispatched(sd_event_source*, void* frontEnd)
{
    auto& self = *static_cast<TrayFrontEnd*>(frontEnd);
    if (self.exporter)
        self.exporter->resendIfStale();
    return 0;
}

} // namespace Kest::StatusNotifier
