#include "tools/kest_inspect/linux/SessionBus.h"

#include <algorithm>
#include <cerrno>

namespace KestInspect {

SessionBus::SessionBus(std::chrono::microseconds patience)
    : deadline(Clock::now() + patience), failure(connect())
{}

// Opening starts to authenticate. Any call would finish that without regard to its timeout, for up to 90 s.
int SessionBus::connect()
{
    sd_bus* opened = nullptr;
    if (const int result = sd_bus_open_user(&opened); result < 0)
        return result;
    bus.reset(opened); // closed without a flush, which would wait
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

// The next call takes no longer than the time that is left; no time would mean the default.
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

} // namespace KestInspect
