// Once a second: the message that the host has left, and the bus plug-ins that are registered.
#include "backend/Backend.h"
#include "lipc/Numeric.h"
#include "lipc/SessionBuffer.h"
#include "lipc/SettingsRecord.h"
#include "lipc/ShmManaged.h"

namespace Kest::Settings {

namespace {

using BusTable = std::map<std::string, std::string>; // display name to client id

/// The bus plug-ins of one pass.
struct BusScan {
    BusTable table;
    bool changed = false; // against the table known before
};

// Of two buses with one name the first is kept, and the second counts as a difference in every pass.
BusScan scanBuses(const LIPC::SessionBuffer& session, const BusTable& known)
{
    std::deque<LIPC::ClientEntry> buses;
    session.getClientEntries(LIPC::kBusType, buses);

    BusScan scan;
    for (const auto& bus : buses) {
        const std::string name(bus.labelText());
        const auto id = bus.id.text();
        scan.table.emplace(name, id);
        const auto before = known.find(name);
        scan.changed = scan.changed || before == known.end() || before->second != id;
    }
    scan.changed = scan.changed || scan.table.size() != known.size();
    return scan;
}

} // namespace

void Backend::timerThreadloop()
{
    MonitorState state;
    while (stopRequests == 0) {
        monitorPass(state);
        const MutexLock lock(stopMutex);
        stopSignal.wait_for(stopMutex, monitorPeriod, [this] { return stopRequests != 0; });
    }
}

// Attached anew each time, so that a host that has restarted is found without further ado.
void Backend::monitorPass(MonitorState& state)
{
    const LIPC::ShmManagedOpen<LIPC::SessionBuffer> session(systemPaths.sessionSegment.c_str());
    setHostState(session.contents() == nullptr ? HostState::absent : HostState::attached);
    if (session.contents() == nullptr)
        return;
    session.populate();
    if (const auto* own = session.contents()->getClientEntry(LIPC::kSettingsClientName))
        passHostMessageOn(*own, state);
    refreshBusClients(*session.contents());
}

void Backend::setHostState(HostState now)
{
    if (host.exchange(now) == now)
        return;
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

// This thread is the table's only writer, and so reads it without the lock.
void Backend::refreshBusClients(const LIPC::SessionBuffer& session)
{
    auto scan = scanBuses(session, busClients);
    if (!scan.changed)
        return;
    const MutexLock lock(busMutex);
    busClients = std::move(scan.table);
    sendMessage(kMsgBusListChanged, 0, "");
}

} // namespace Kest::Settings
