// Observes the host's session once a second on its own thread, and keeps a table of the buses.
#pragma once

#include "backend/Mutex.h"
#include "lipc/KeyFileWatch.h"

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <thread>
#include <vector>

namespace LIPC {
struct ClientEntry;
struct SessionBuffer;
} // namespace LIPC

namespace Kest::Settings {

struct SystemPaths;

enum class HostPresence : std::uint8_t {
    absent,  // no session
    present, // there is a session
    refused, // of another pointer width: ignored until the agent is restarted
};

/// The host's state.
struct HostState {
    HostPresence presence = HostPresence::absent;
    int session = -1;         // the segment's identifier; changes when the host is restarted
    std::int32_t message = 0; // the host's current status number; 0 if there is none
    bool operator==(const HostState&) const = default;
};

/// The message that the session's bus plug-ins have changed.
constexpr std::int32_t kMsgBusListChanged = 3;

using BusTable = std::map<std::string, std::string>; // display name to client id

/// The bus plug-ins of one pass.
struct BusScan {
    BusTable table;
    bool changed = false; // compared with the known table
    bool operator==(const BusScan&) const = default;
};

/// Returns the buses of a session. If two buses have the same name, the first is used, and the second counts
/// as a change in every pass.
BusScan scanBuses(const LIPC::SessionBuffer& session, const BusTable& known);

/// Only the owner calls `acceptsHost`, `start` and `stop`; all other functions may be called on any thread.
class SessionMonitor {
public:
    /// Called on the monitor thread, without a lock.
    struct Callbacks {
        std::function<void(std::int32_t number)> message; // a new status number, or 3
        std::function<void()> hostChanged;                // `hostState` has changed
        std::function<void()> eachPass;                   // also with a refused host
    };

    /// `systemPaths` must outlive the monitor.
    SessionMonitor(const SystemPaths& systemPaths, std::chrono::nanoseconds monitorPeriod, Callbacks ofOwner);
    SessionMonitor(const SessionMonitor&) = delete;
    SessionMonitor& operator=(const SessionMonitor&) = delete;

    /// Checks the host's word size. Returns false if the host is refused, permanently. Accepts a host that is
    /// not running, and one that has not published its word size yet; each pass checks that one again.
    bool acceptsHost();
    /// Starts the thread. Returns 0, or the system's error number if it refuses one.
    int start();
    /// Stops and joins the thread, if there is one; blocks until its current operation ends.
    void stop();

    HostState hostState() const;
    /// Replaces `names` by the buses' display names: "Main Bus" first, the others sorted by byte.
    void getBusNames(std::vector<std::string>& names) const;
    /// Writes the session's default bus; ignores an unknown name.
    void setDefaultBus(const std::string& name) const;
    /// Calls `write` with the agent's record in the session, unless there is none or the host is refused.
    void withOwnRecord(const std::function<void(LIPC::ClientEntry&)>& write) const;

private:
    void timerThreadloop();
    void monitorPass();
    void refreshKeyFiles() const;
    void setHostState(const HostState& state);
    void passHostMessageOn(std::int32_t number);
    void refreshBusClients(const LIPC::SessionBuffer& session);
    BusScan scan(const LIPC::SessionBuffer& session) const;

    const SystemPaths& paths;
    const std::chrono::nanoseconds period;
    const Callbacks callbacks;
    // Not 0 if the host is refused: then only the settings file is written. Never reset.
    std::atomic<std::uint32_t> hostArchMismatch = 0;

    mutable Mutex busMutex;
    BusTable busClients KEST_GUARDED_BY(busMutex);
    HostState host KEST_GUARDED_BY(busMutex);

    // Used by the monitor thread only, once it runs.
    bool versionIsPending = false; // the host has not published its word size yet
    std::int32_t lastHostMessage = 0;
    int unstablePasses = 0;          // in a row, in which the buses changed between two scans
    LIPC::KeyFileWatch keyFileWatch; // of the session

    Mutex stopMutex;
    std::condition_variable_any stopSignal;
    std::atomic<bool> isStopping = false;
    std::thread monitorThread;
};

} // namespace Kest::Settings
