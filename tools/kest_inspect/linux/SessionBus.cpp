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
    sd_bus_message* request = nullptr;
    int owned = 0;
    int result = failure;
    if (result >= 0)
        result =
            sd_bus_message_new_method_call(bus.get(), &request, "org.freedesktop.DBus",
                                           "/org/freedesktop/DBus", "org.freedesktop.DBus", "NameHasOwner");
    const Call owner(request, sd_bus_message_unref);
    if (result >= 0)
        result = sd_bus_message_append(request, "s", name);
    if (result >= 0)
        result = call(request, nullptr, owned);
    return result < 0 ? result : owned;
}

int SessionBus::property(const char* service, const char* path, const char* name)
{
    sd_bus_message* request = nullptr;
    int value = 0;
    int result = failure;
    if (result >= 0)
        result = sd_bus_message_new_method_call(bus.get(), &request, service, path,
                                                "org.freedesktop.DBus.Properties", "Get");
    const Call owner(request, sd_bus_message_unref);
    if (result >= 0)
        result = sd_bus_message_append(request, "ss", service, name);
    if (result >= 0)
        result = call(request, "b", value);
    return result < 0 ? result : value;
}

// The answer is a boolean, in a variant when that has contents.
int SessionBus::call(sd_bus_message* request, const char* contents, int& answer)
{
    if (timeLeft() == 0) // which sd_bus_call takes for its default
        return -ETIMEDOUT;
    sd_bus_message* received = nullptr;
    int result = sd_bus_call(bus.get(), request, timeLeft(), nullptr, &received);
    const Call reply(received, sd_bus_message_unref);
    if (result >= 0 && contents != nullptr)
        result = sd_bus_message_enter_container(received, 'v', contents);
    return result < 0 ? result : sd_bus_message_read(received, "b", &answer);
}

std::uint64_t SessionBus::timeLeft() const
{
    const auto left = std::chrono::duration_cast<std::chrono::microseconds>(deadline - Clock::now());
    return static_cast<std::uint64_t>(std::max<std::int64_t>(left.count(), 0));
}

} // namespace KestInspect
