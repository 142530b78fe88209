// The simulated host: its segments, its clients, and what it prints about them.
#pragma once

#include "tools/k3dhost_simulator/Failure.h"
#include "tools/k3dhost_simulator/HostSegments.h"
#include "tools/k3dhost_simulator/SessionRecords.h"
#include "tools/k3dhost_simulator/WriteWatcher.h"

#include <chrono>
#include <functional>
#include <memory>
#include <string>

namespace K3DHostSimulator {

/// Runs or is stopped; stopped at first. Used by one thread. Lines are printed without a line feed, as --help
/// lists them.
class Host {
public:
    using Print = std::function<void(const std::string& line)>;

    /// `event` prints what the host does, `write` what others wrote into the session.
    Host(Print event, Print write);
    ~Host() { stop(); }
    Host(const Host&) = delete;
    Host& operator=(const Host&) = delete;

    /// Makes new segments and registers the clients that are always there. A running host is stopped first.
    Failure start(int wordSize, bool withSettings);
    /// Prints what is left to print and removes the segments; nothing when the host does not run.
    void stop();

    /// These fail when the host does not run, and as their lines say.
    Failure addBus(const std::string& id, const std::string& name);
    Failure removeBus(const std::string& id);
    Failure renameBus(const std::string& id, const std::string& name);
    Failure postMessage(float number);

    /// Prints what was written since the last look: the agent's fields each time, the rest once a second.
    void watch();

private:
    template <typename Change>
    void change(int slot, Change apply);
    void registerAs(int slot, const Client& client);
    Failure findBus(const std::string& id, int& slot);
    void printAgentWrites();
    void printForeignWrites();

    Print printEvent;
    Print printWrite;
    HostSegments segments;
    std::unique_ptr<WriteWatcher> watcher; // null while stopped
    LIPC::VersionBuffer expectedVersion{};
    std::chrono::steady_clock::time_point nextForeignLook;
};

} // namespace K3DHostSimulator
