// Once a second: the message that the host has left, the bus plug-ins that are registered, and the encoders'
// pipe.
#include "backend/Backend.h"
#include "backend/BusScan.h"
#include "lipc/Numeric.h"
#include "lipc/SessionBuffer.h"
#include "lipc/SettingsRecord.h"
#include "lipc/ShmManaged.h"
#include "log/Log.h"

namespace Kest::Settings {
namespace {

// Time for a host that has been interrupted in the middle of a name; a name takes it some nanoseconds.
constexpr auto kWriteTime = std::chrono::milliseconds(1);
// A bus that is renamed all the time must not hide the others.
constexpr int kMaxUnstablePasses = 3;
constexpr int kPassesPerRefresh = 600; // some ten minutes

} // namespace

void Backend::timerThreadloop()
{
    MonitorState state;
    for (int pass = 1; stopRequests == 0; ++pass) {
        progressPipe.check(); // here, so that the reader sleeps until there is something to do
        if (pass % kPassesPerRefresh == 0)
            refreshMarkers();
        if (versionIsPending)
            checkVersionAgain();
        if (hostArchMismatch == 0)
            monitorPass(state);
        const MutexLock lock(stopMutex);
        stopSignal.wait_for(stopMutex, monitorPeriod, [this] { return stopRequests != 0; });
    }
}

// The version segment is attached only at the start, and no segment of a refused host is.
void Backend::refreshMarkers() const
{
    for (const auto& segment : {systemPaths.versionSegment, systemPaths.sessionSegment})
        LIPC::shmKey(segment.c_str());
}

void Backend::checkVersionAgain()
{
    if (acceptsHost())
        return;
    refuseHost();
    hostStateChanged();
}

// Attached in each pass, so that a host that has restarted is found.
void Backend::monitorPass(MonitorState& state)
{
    const LIPC::ShmManagedOpen<LIPC::SessionBuffer> session(systemPaths.sessionSegment.c_str());
    if (state.marker.isMarkerLost(session))
        Lct::Log(
            Lct::eLogError, "session",
            "%s was removed while its segment still exists; the agent cannot find the session until K3DHost "
            "is restarted",
            LIPC::markerPath(systemPaths.sessionSegment.c_str()).c_str());
    noteSession(session.contents() != nullptr);
    if (session.contents() == nullptr)
        return;
    session.populate();
    if (const auto* own = session.contents()->getClientEntry(LIPC::kSettingsClientName))
        passHostMessageOn(*own, state);
    refreshBusClients(*session.contents(), state);
}

HostState Backend::hostState() const
{
    if (hostArchMismatch != 0)
        return HostState::refused;
    return sessionIsThere ? HostState::attached : HostState::absent;
}

void Backend::noteSession(bool isThere)
{
    if (sessionIsThere.exchange(isThere) != isThere)
        hostStateChanged();
}

void Backend::hostStateChanged() const
{
    if (auto* callback = hostStateCallback.load())
        callback(messageContext);
}

void Backend::passHostMessageOn(const LIPC::ClientEntry& own, MonitorState& state)
{
    const auto number = LIPC::round(LIPC::loadShared(own.params[LIPC::eHostMessage]));
    if (number == state.lastHostMessage)
        return;
    sendMessage(number, 0, "");
    state.lastHostMessage = number;
}

// This thread is the table's only writer, and so reads it without the lock. What the host is just changing
// reads differently in the second scan: that is left to the next pass, but not for ever.
void Backend::refreshBusClients(const LIPC::SessionBuffer& session, MonitorState& state)
{
    const auto first = scanBuses(session, busClients);
    if (!first.changed) {
        state.unstablePasses = 0;
        return;
    }
    std::this_thread::sleep_for(kWriteTime);
    auto scan = scanBuses(session, busClients);
    if (scan != first && ++state.unstablePasses < kMaxUnstablePasses)
        return;
    state.unstablePasses = 0;
    const MutexLock lock(busMutex);
    busClients = std::move(scan.table);
    sendMessage(kMsgBusListChanged, 0, "");
}

} // namespace Kest::Settings
