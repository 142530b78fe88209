// The thread that observes the host's session once a second, and the table of the buses in it.
#pragma once

#include "backend/Guarded.h"
#include "lipc/MarkerWatch.h"

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
    present, // its session is there
    refused, // of another pointer width: left alone until the agent is started again
};

/// What the agent sees of the host.
struct HostState {
    HostPresence presence = HostPresence::absent;
    int session = -1;         // the segment's identifier: another one when the host was restarted
    std::int32_t message = 0; // the status number that the host shows now; 0 when it shows none
    bool operator==(const HostState&) const = default;
};

/// The session's set of bus plug-ins has changed.
constexpr std::int32_t kMsgBusListChanged = 3;

using BusTable = std::map<std::string, std::string>; // display name to client id

/// The bus plug-ins of one pass.
struct BusScan {
    BusTable table;
    bool changed = false; // against the table known before
    bool operator==(const BusScan&) const = default;
};

/// Of two buses with one name the first is kept, and the second counts as a difference in every pass.
BusScan scanBuses(const LIPC::SessionBuffer& session, const BusTable& known);

/// `acceptsHost`, `start` and `stop` belong to the owner; all else may be called on any thread.
class SessionMonitor {
public:
    /// Called on the monitor's thread, without a lock.
    struct Callbacks {
        std::function<void(std::int32_t number)> message; // a new status number, or 3
        std::function<void()> hostChanged;                // `hostState` has changed
        std::function<void()> eachPass;                   // also with a refused host
    };

    /// `systemPaths` outlives it.
    SessionMonitor(const SystemPaths& systemPaths, std::chrono::nanoseconds monitorPeriod, Callbacks ofOwner);
    SessionMonitor(const SessionMonitor&) = delete;
    SessionMonitor& operator=(const SessionMonitor&) = delete;

    /// Checks the host's word size. A host that is not running yet is accepted, and so is one that has not
    /// published its word size yet: each pass checks that one again. False when the host is refused, for
    /// good.
    bool acceptsHost();
    /// Returns 0, or the system's error number when it refuses the thread.
    int start();
    /// Ends and joins the thread, if there is one; takes no longer than what it is just doing.
    void stop();

    HostState hostState() const;
    /// Replaces `names` by the buses' display names: "Main Bus" first, the others sorted by byte.
    void getBusNames(std::vector<std::string>& names) const;
    /// Writes the session's default bus; the name of no bus changes nothing.
    void setDefaultBus(const std::string& name) const;
    /// Calls `write` with the agent's record in the session, unless there is none or the host is refused.
    void withOwnRecord(const std::function<void(LIPC::ClientEntry&)>& write) const;

private:
    void timerThreadloop();
    void monitorPass();
    void refreshMarkers() const;
    void setHostState(const HostState& state);
    void passHostMessageOn(std::int32_t number);
    void refreshBusClients(const LIPC::SessionBuffer& session);
    BusScan scan(const LIPC::SessionBuffer& session) const;

    const SystemPaths& paths;
    const std::chrono::nanoseconds period;
    const Callbacks callbacks;
    // Not 0: the host is refused, and only the settings file is written. Never 0 again.
    std::atomic<std::uint32_t> hostArchMismatch = 0;

    mutable Mutex busMutex;
    BusTable busClients KEST_GUARDED_BY(busMutex);
    HostState host KEST_GUARDED_BY(busMutex);

    // Monitor thread only, once it runs.
    bool versionIsPending = false; // the host has not published its word size yet
    std::int32_t lastHostMessage = 0;
    int unstablePasses = 0;   // in a row, in which the buses changed between two scans
    LIPC::MarkerWatch marker; // of the session

    Mutex stopMutex;
    std::condition_variable_any stopSignal;
    std::atomic<bool> isStopping = false;
    std::thread monitorThread;
};

} // namespace Kest::Settings
