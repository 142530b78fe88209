// Questions to the session bus that end in time even when the bus or a service is stopped.
#pragma once

#include <chrono>
#include <memory>
#include <systemd/sd-bus.h>

namespace KestInspect {

/// All operations of an object together, connecting and closing included, take no longer than its patience. A
/// failure is a negative error number: -ETIMEDOUT when the time is over.
class SessionBus {
public:
    explicit SessionBus(std::chrono::microseconds patience);

    /// Returns 1 when the name has an owner, else 0. Starts no service.
    int hasOwner(const char* name);

    /// Returns the value, 0 or 1, of a boolean property of the interface that is called as the service.
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

} // namespace KestInspect
