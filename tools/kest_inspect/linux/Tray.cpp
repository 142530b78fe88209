// Queries the desktop's tray on the session bus. Ends in time even if the bus or a service is stopped.
#include "tools/kest_inspect/SystemQueries.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <memory>
#include <systemd/sd-bus.h>

namespace KestInspect {
namespace {

constexpr char kTray[] = "tray";
constexpr char kWatcher[] = "org.kde.StatusNotifierWatcher";
constexpr std::chrono::seconds kTimeout(2); // for all calls on the bus together
constexpr char kTrayHint[] = "add a tray to the desktop's panel (GNOME: install the AppIndicator "
                             "extension), or use kest-settings-terminal";

/// All operations of an object together, including connecting and closing, take at most its timeout. A
/// failure is a negative error number: -ETIMEDOUT after that time.
class SessionBus {
public:
    explicit SessionBus(std::chrono::microseconds timeout);

    /// Returns 1 when the name has an owner, else 0. Starts no service.
    int hasOwner(const char* name);

    /// Returns the value, 0 or 1, of a boolean property of the interface that has the service's name.
    int property(const char* service, const char* path, const char* name);

private:
    using Clock = std::chrono::steady_clock;

    int connect();
    int prepareCall();
    std::uint64_t timeLeft() const; // microseconds

    const Clock::time_point deadline;
    std::unique_ptr<sd_bus, decltype(&sd_bus_close_unref)> bus{nullptr, sd_bus_close_unref};
    int failure = 0; // of connecting
};

SessionBus::SessionBus(std::chrono::microseconds timeout)
    : deadline(Clock::now() + timeout), failure(connect())
{}

// Opening only starts the authentication. Any call would finish it without regard to the call's timeout, for
// up to 90 s.
int SessionBus::connect()
{
    sd_bus* opened = nullptr;
    if (const int result = sd_bus_open_user(&opened); result < 0)
        return result;
    bus.reset(opened); // closed without a flush, which would block
    for (;;) {
        int result = sd_bus_is_ready(opened);
        if (result != 0)
            return std::min(result, 0);
        if (timeLeft() == 0)
            return -ETIMEDOUT;
        result = sd_bus_process(opened, nullptr);
        if (result == 0)
            result = sd_bus_wait(opened, timeLeft());
        if (result < 0 && result != -EINTR)
            return result;
    }
}

int SessionBus::hasOwner(const char* name)
{
    sd_bus_message* received = nullptr;
    int owned = 0;
    int result = prepareCall();
    if (result >= 0)
        result = sd_bus_call_method(bus.get(), "org.freedesktop.DBus", "/org/freedesktop/DBus",
                                    "org.freedesktop.DBus", "NameHasOwner", nullptr, &received, "s", name);
    const std::unique_ptr<sd_bus_message, decltype(&sd_bus_message_unref)> reply(received,
                                                                                 sd_bus_message_unref);
    if (result >= 0)
        result = sd_bus_message_read(received, "b", &owned);
    return result < 0 ? result : owned;
}

int SessionBus::property(const char* service, const char* path, const char* name)
{
    int value = 0;
    int result = prepareCall();
    if (result >= 0)
        result = sd_bus_get_property_trivial(bus.get(), service, path, service, name, nullptr, 'b', &value);
    return result < 0 ? result : value;
}

// Limits the next call to the time that is left; 0 would mean the default timeout.
int SessionBus::prepareCall()
{
    if (failure < 0 || timeLeft() == 0)
        return failure < 0 ? failure : -ETIMEDOUT;
    return sd_bus_set_method_call_timeout(bus.get(), timeLeft());
}

std::uint64_t SessionBus::timeLeft() const
{
    const auto left = std::chrono::duration_cast<std::chrono::microseconds>(deadline - Clock::now());
    return static_cast<std::uint64_t>(std::max<std::int64_t>(left.count(), 0));
}

// Without a bus it is no error: there is none over ssh, for example.
Finding noBus(int failure)
{
    if (failure == -ETIMEDOUT)
        return error(kTray, "the D-Bus session bus does not answer", "log in to the desktop again");
    const auto why = failure == -ENOMEDIUM ? "" : std::string(": ") + std::strerror(-failure);
    return warning(
        kTray, "no D-Bus session bus" + why,
        "run kest-inspect again in a terminal on the desktop; without a desktop, use kest-settings-terminal");
}

} // namespace

std::optional<Finding> checkTray()
{
    SessionBus bus(kTimeout);
    const int owned = bus.hasOwner(kWatcher);
    if (owned < 0)
        return noBus(owned);
    if (owned == 0)
        return warning(kTray, "none on this desktop", kTrayHint);
    // A watcher without a panel keeps items that are not displayed. Without an answer it counts as displayed.
    if (bus.property(kWatcher, "/StatusNotifierWatcher", "IsStatusNotifierHostRegistered") == 0)
        return warning(kTray, "a tray watcher is running but no panel displays it", kTrayHint);
    return ok(kTray, "available");
}

} // namespace KestInspect
