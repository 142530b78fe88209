// The tray's side of the bus for the benchmarks: items register with it.
#pragma once

#include "bench/Samples.h"

#include <functional>
#include <string>
#include <sys/types.h>
#include <systemd/sd-bus.h>
#include <vector>

namespace Kest::Bench {

/// Owns the watcher's name on the session bus while it lives.
class Watcher {
public:
    Watcher();
    ~Watcher();
    Watcher(const Watcher&) = delete;
    Watcher& operator=(const Watcher&) = delete;

    /// Starts a program and waits for its registration: the milliseconds between, or -1 after ten seconds.
    double start(const std::vector<std::string>& command);
    /// Answers calls and takes signals until a condition holds; false when it does not in that time.
    bool waitFor(const std::function<bool()>& condition, Clock::duration atMost) const;
    /// Ends what was started last, by force when it does not end itself.
    void end();
    pid_t pid() const { return process; }
    /// The bus name of the item that registered last.
    const std::string& item() const { return itemName; }
    sd_bus* bus() const { return connection; }

private:
    static int onRegister(sd_bus_message* message, void* watcher, sd_bus_error*);

    sd_bus* connection = nullptr;
    pid_t process = -1;
    std::string itemName;
    Clock::time_point registered;
};

} // namespace Kest::Bench
