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

/// Initially stopped. Prints lines as --help lists them, without line feeds. One thread only.
class Host {
public:
    using Print = std::function<void(const std::string& line)>;

    /// `event` prints what the host does, `write` what other processes write into its segments.
    Host(Print event, Print write);
    ~Host() { stop(); }
    Host(const Host&) = delete;
    Host& operator=(const Host&) = delete;

    /// Creates new segments and registers the fixed clients. Stops a running host first.
    Failure start(int wordSize, bool withSettings);
    /// Prints pending lines and removes the segments; does nothing if the host is stopped.
    void stop();

    /// Each fails if the host is stopped or does not allow the change.
    Failure addBus(const std::string& id, const std::string& name);
    Failure removeBus(const std::string& id);
    Failure renameBus(const std::string& id, const std::string& name);
    Failure postMessage(float number);

    /// Prints the writes since the last call: of the agent's fields each time, of all others once a second.
    void printWrites();

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
    std::chrono::steady_clock::time_point nextForeignCheck;
};

} // namespace K3DHostSimulator
