// The simulated host: its segments, its clients and the lines that it prints.
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

/// The host is initially stopped. k3dhost-simulator --help lists the lines that the host prints. Not
/// synchronised.
class Host {
public:
    /// Called with one line, without its line feed.
    using Print = std::function<void(const std::string& line)>;

    /// `event` is called with a line about each action of the host, `write` with a line about each write of
    /// another process into the host's segments.
    Host(Print event, Print write);
    ~Host() { stop(); }
    Host(const Host&) = delete;
    Host& operator=(const Host&) = delete;

    /// Stops the host if it is running, then creates new segments and registers three clients: a mixing
    /// engine, a panner and a return. `wordSize` must be 32 or 64 (bits). If `withSettings` is true, also
    /// registers the agent's record. Fails as `HostSegments::create` does, and leaves the host stopped.
    Failure start(int wordSize, bool withSettings);
    /// Prints the writes that are not printed yet, and removes the segments. Does nothing if the host is
    /// stopped.
    void stop();

    /// These functions change the session. Ids and names must have at most 64 bytes. `postMessage` writes a
    /// status number into the agent's record. Each function fails if the host is stopped. `addBus` also fails
    /// if a client already has the id or no record is free; `removeBus` and `renameBus`, if no bus has the
    /// id; `postMessage`, if the session does not contain the agent's record.
    Failure addBus(const std::string& id, const std::string& name);
    Failure removeBus(const std::string& id);
    Failure renameBus(const std::string& id, const std::string& name);
    Failure postMessage(float number);

    /// Prints the writes of other processes since the last call. Each call checks the fields that the agent
    /// may write; at most one call a second checks all other bytes. Does nothing if the host is stopped.
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
