// The desktop's tray, asked for on the session bus.
#include "tools/kest_inspect/SystemLook.h"

#include <cerrno>
#include <cstring>
#include <memory>
#include <systemd/sd-bus.h>

namespace KestInspect {
namespace {

constexpr char kTray[] = "tray";
constexpr char kWatcher[] = "org.kde.StatusNotifierWatcher";
constexpr std::uint64_t kPatience = 2'000'000; // microseconds
constexpr char kInTerminal[] = "on a desktop, add a tray or the AppIndicator extension to its panel; "
                               "kest-settings-terminal shows the same menu";

using Bus = std::unique_ptr<sd_bus, decltype(&sd_bus_flush_close_unref)>;

// Whether a name is taken; negative when the bus does not answer. Starts no service.
int hasOwner(sd_bus* bus, const char* name)
{
    sd_bus_message* reply = nullptr;
    int result = sd_bus_call_method(bus, "org.freedesktop.DBus", "/org/freedesktop/DBus",
                                    "org.freedesktop.DBus", "NameHasOwner", nullptr, &reply, "s", name);
    int owned = 0;
    if (result >= 0)
        result = sd_bus_message_read(reply, "b", &owned);
    sd_bus_message_unref(reply);
    return result < 0 ? result : owned;
}

// A watcher without a panel keeps items that nobody shows. One that does not tell is taken for well.
bool isShown(sd_bus* bus)
{
    int shown = 1;
    sd_bus_get_property_trivial(bus, kWatcher, "/StatusNotifierWatcher", kWatcher,
                                "IsStatusNotifierHostRegistered", nullptr, 'b', &shown);
    return shown != 0;
}

// As over ssh, where all may be well.
Finding noBus(int failure)
{
    const auto why = failure == -ENOMEDIUM ? "" : std::string(": ") + std::strerror(-failure);
    return note(kTray, "no session bus here" + why,
                "look from a terminal of the desktop; kest-settings-terminal needs no bus");
}

} // namespace

std::optional<Finding> checkTray()
{
    sd_bus* opened = nullptr;
    const int failure = sd_bus_open_user(&opened);
    const Bus bus(opened, sd_bus_flush_close_unref);
    if (failure < 0)
        return noBus(failure);
    sd_bus_set_method_call_timeout(opened, kPatience);
    const int owned = hasOwner(opened, kWatcher);
    if (owned == -ETIMEDOUT)
        return wrong(kTray, "the session bus does not answer", "log in to the desktop anew");
    if (owned < 0)
        return noBus(owned);
    if (owned == 0)
        return note(kTray, "none on this desktop", kInTerminal);
    if (!isShown(opened))
        return note(kTray, "one that no panel shows", kInTerminal);
    return ok(kTray, "there");
}

} // namespace KestInspect
