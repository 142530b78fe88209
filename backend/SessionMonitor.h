// Checks the host's session regularly on a separate thread, the monitor thread. Keeps a table of the buses.
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
    absent,  // there is no session
    present, // there is a session
    refused, // the host's word size is not 64 bits; the monitor ignores the host until the agent is restarted
};

struct HostState {
    HostPresence presence = HostPresence::absent;
    int session = -1;         // the segment's identifier, new after each start of the host; -1 if not present
    std::int32_t message = 0; // the host's current status number; 0 if there is none
    bool operator==(const HostState&) const = default;
};

/// `SessionMonitor::Callbacks::message` receives this number after a change of the session's buses.
constexpr std::int32_t kMsgBusListChanged = 3;

using BusTable = std::map<std::string, std::string>; // display name in Mac OS Roman to client id

/// The buses in the session at one time.
struct BusScan {
    BusTable table;
    bool changed = false; // see `scanBuses`
    bool operator==(const BusScan&) const = default;
};

/// Returns the buses of a session. If several buses have the same name, `table` contains only the first of
/// them. `changed` is true if `table` differs from `known`, or if buses with different ids have the same
/// name.
BusScan scanBuses(const LIPC::SessionBuffer& session, const BusTable& known);

/// A pass is one check of the session. Only the owner calls `confirmHost`, `start` and `stop`, on one thread;
/// any thread may call the other functions. After `start`, call `stop` before destroying the object.
class SessionMonitor {
public:
    /// Called on the monitor thread, without a lock; `confirmHost` may also call `hostChanged` on its
    /// caller's thread.
    struct Callbacks {
        std::function<void(std::int32_t number)> message; // a new status number, or `kMsgBusListChanged`
        std::function<void()> hostChanged;                // `hostState` has changed
        std::function<void()> eachPass; // at the start of each pass, also if the host is refused
    };

    /// `systemPaths` must outlive the monitor. `monitorPeriod` is the pause between two passes.
    SessionMonitor(const SystemPaths& systemPaths, std::chrono::nanoseconds monitorPeriod, Callbacks ofOwner);
    SessionMonitor(const SessionMonitor&) = delete;
    SessionMonitor& operator=(const SessionMonitor&) = delete;

    /// Checks the word size that the host has published; call it before `start`. If the word size is not 64
    /// bits, prints a text, refuses the host permanently and returns false. Otherwise returns true, also if
    /// there is no host. If the host has not published its word size yet, returns true, and each pass checks
    /// the word size again.
    bool confirmHost();
    /// Starts the monitor thread. Returns 0, or the system's error number if the system refuses a thread.
    int start();
    /// Starts the first pass now. Without this call, it follows one period after `start`.
    void beginPasses();
    /// Ends the monitor thread, if it was started; blocks until the current pass is done.
    void stop();

    /// Returns the host's state at the last check.
    HostState hostState() const;
    /// Replaces the content of `names` by the names of all buses at the last pass, in Mac OS Roman. The first
    /// is "Main Bus", even if no bus has this name; the others follow in byte order.
    void getBusNames(std::vector<std::string>& names) const;
    /// Makes the bus called `name` the session's default bus, even if the host is refused. `name` is encoded
    /// in Mac OS Roman. Does nothing if no bus had this name at the last pass, or if there is no session.
    void setDefaultBus(const std::string& name) const;
    /// Calls `write`, on the calling thread, with the agent's record in the session. Does not call `write` if
    /// there is no such record or the host is refused.
    void withAgentRecord(const std::function<void(LIPC::ClientEntry&)>& write) const;

private:
    void timerThreadloop();
    void monitorPass();
    void refreshKeyFiles() const;
    void setHostState(const HostState& state);
    void forwardHostMessage(std::int32_t number);
    void refreshBusClients(const LIPC::SessionBuffer& session);
    BusScan scan(const LIPC::SessionBuffer& session) const;

    const SystemPaths& paths;
    const std::chrono::nanoseconds period;
    const Callbacks callbacks;
    // Not 0 if the host is refused. Never reset.
    std::atomic<std::uint32_t> hostArchMismatch = 0;

    mutable Mutex busMutex;
    BusTable busClients KEST_GUARDED_BY(busMutex);
    HostState host KEST_GUARDED_BY(busMutex);

    // Used by the monitor thread only, once it runs.
    bool versionIsPending = false; // the host has not published its word size yet
    std::int32_t lastHostMessage = 0;
    int unstablePasses = 0;          // successive passes whose two scans of the buses differed
    LIPC::KeyFileWatch keyFileWatch; // of the session

    Mutex stopMutex;
    std::condition_variable_any stopSignal;
    std::atomic<bool> mayBegin = false;
    std::atomic<bool> isStopping = false;
    std::thread monitorThread;
};

} // namespace Kest::Settings
