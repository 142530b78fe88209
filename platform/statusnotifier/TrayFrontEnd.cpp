#include "platform/statusnotifier/TrayFrontEnd.h"

#include "app/KestSettingsAppDelegate.h"
#include "log/Output.h"

#include <cstring>
#include <filesystem>
#include <sys/epoll.h>

namespace Kest::StatusNotifier {
namespace {

// Beside the program, where it is installed and where it is built: bin/kest-settings and share/icons.
std::string iconThemePath()
{
    std::error_code failure;
    const auto program = std::filesystem::read_symlink("/proc/self/exe", failure);
    return failure ? std::string() : (program.parent_path().parent_path() / "share/icons").string();
}

void tellThatThereIsNoTray()
{
    Lct::print("No tray on this desktop yet; the item appears as soon as there is one. "
               "kest-settings-terminal shows the same menu in a terminal.\n");
}

} // namespace

TrayFrontEnd::TrayFrontEnd()
{
    sd_event* newEvent = nullptr;
    sd_event_new(&newEvent);
    event.reset(newEvent);
    sd_bus* bus = nullptr;
    if (newEvent == nullptr || sd_bus_open_user(&bus) < 0)
        return;
    sessionBus.reset(bus);
    sd_bus_set_exit_on_disconnect(bus, 1);
}

bool TrayFrontEnd::run(App::KestSettingsAppDelegate& application)
{
    if (!exportTo(application))
        return false;
    sd_bus_attach_event(sessionBus.get(), event.get(), SD_EVENT_PRIORITY_NORMAL);
    sd_event_add_io(event.get(), nullptr, wakeUps.wakeUpDescriptor(), EPOLLIN, onWakeUp, this);
    sd_event_loop(event.get());
    item.reset();
    exporter.reset();
    return true;
}

bool TrayFrontEnd::exportTo(App::KestSettingsAppDelegate& application)
{
    wakeUps.dispatchWakeUps(); // what start-up has posted: a panel finds the menu whole
    openAll(application);
    exporter.emplace(sessionBus.get(),
                     MenuQuestions{application.menu(),
                                   [&application](App::ItemId id) { application.choose(id); },
                                   [&application](App::ItemId id) { application.menuWillOpen(id); },
                                   [this](std::function<void()> job) { post(std::move(job)); }});
    item.emplace(sessionBus.get(), iconThemePath(), tellThatThereIsNoTray);
    const int failure = std::min(exporter->failure(), item->failure());
    if (failure < 0)
        Lct::printError("Kest Settings cannot be put on the session bus: %s\n", std::strerror(-failure));
    return failure >= 0;
}

// Panels fetch the menu long before it opens, and some close a submenu that was empty when it fills.
void TrayFrontEnd::openAll(App::KestSettingsAppDelegate& application)
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

} // namespace Kest::StatusNotifier
