#include "backend/SessionMonitor.h"

#include "backend/SignalsBlocked.h"
#include "backend/SystemPaths.h"
#include "lipc/Numeric.h"
#include "lipc/SessionBuffer.h"
#include "lipc/SettingsRecord.h"
#include "lipc/SharedNumber.h"
#include "lipc/ShmManaged.h"
#include "lipc/VersionBuffer.h"
#include "log/Log.h"
#include "log/Output.h"
#include "tables/Settings.h"

namespace Kest::Settings {
namespace {

using Session = LIPC::ShmManagedOpen<LIPC::SessionBuffer>;

// Time for a host that was interrupted while it wrote a name, which takes some nanoseconds.
constexpr auto kWriteTime = std::chrono::milliseconds(1);
// A bus that is renamed continuously must not hide the others.
constexpr int kMaxUnstablePasses = 3;
constexpr int kPassesPerRefresh = 600; // about ten minutes

} // namespace

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

SessionMonitor::SessionMonitor(const SystemPaths& systemPaths, std::chrono::nanoseconds monitorPeriod,
                               Callbacks ofOwner)
    : paths(systemPaths), period(monitorPeriod), callbacks(std::move(ofOwner))
{}

bool SessionMonitor::confirmHost()
{
    const LIPC::ShmManagedOpen<LIPC::VersionBuffer> version(paths.versionSegment.c_str());
    if (version.contents() == nullptr)
        return true;
    const auto wordSize = LIPC::loadShared(version.contents()->wordSize);
    versionIsPending = wordSize == LIPC::VersionBuffer::kNotPublished;
    if (versionIsPending || wordSize == LIPC::VersionBuffer::kAcceptedWordSize)
        return true;
    Lct::print("K3DHost running in wrong architecture (32 bits : should be 64 )");
    ++hostArchMismatch;
    setHostState({.presence = HostPresence::refused});
    return false;
}

int SessionMonitor::start()
{
    return startThread(monitorThread, [this] { timerThreadloop(); });
}

void SessionMonitor::beginPasses()
{
    {
        const MutexLock lock(stopMutex);
        mayBegin = true;
    }
    stopSignal.notify_all();
}

void SessionMonitor::stop()
{
    {
        const MutexLock lock(stopMutex);
        isStopping = true;
    }
    stopSignal.notify_all();
    if (monitorThread.joinable())
        monitorThread.join();
}

void SessionMonitor::timerThreadloop()
{
    {
        const MutexLock lock(stopMutex);
        stopSignal.wait_for(stopMutex, period, [this] { return mayBegin || isStopping; });
    }
    for (int pass = 1; !isStopping; ++pass) {
        callbacks.eachPass();
        if (pass % kPassesPerRefresh == 0)
            refreshKeyFiles();
        if (versionIsPending)
            confirmHost();
        if (hostArchMismatch == 0)
            monitorPass();
        const MutexLock lock(stopMutex);
        stopSignal.wait_for(stopMutex, period, [this] { return isStopping.load(); });
    }
}

// Refreshes both key files here: the version segment is attached only at the start, and the segments of a
// refused host never.
void SessionMonitor::refreshKeyFiles() const
{
    for (const auto& segment : {paths.versionSegment, paths.sessionSegment})
        LIPC::shmKey(segment.c_str());
}

// Attaches in each pass, so that a restarted host is found.
void SessionMonitor::monitorPass()
{
    const Session session(paths.sessionSegment.c_str());
    if (keyFileWatch.detectKeyFileLoss(session))
        Lct::Log(
            Lct::eLogError, "session",
            "%s was removed while its segment still exists; the agent cannot find the session until K3DHost "
            "is restarted",
            LIPC::keyFilePath(paths.sessionSegment.c_str()).c_str());
    if (session.contents() == nullptr)
        return setHostState({});
    session.populate();
    const auto* own = session.contents()->getClientEntry(LIPC::kSettingsClientName);
    const auto number =
        own == nullptr ? 0 : LIPC::round(LIPC::loadShared(own->params[LIPC::kStatusNumberParameter]));
    setHostState({HostPresence::present, session.id, number});
    if (own != nullptr)
        forwardHostMessage(number);
    refreshBusClients(*session.contents());
}

HostState SessionMonitor::hostState() const
{
    const MutexLock lock(busMutex);
    return host;
}

void SessionMonitor::setHostState(const HostState& state)
{
    {
        const MutexLock lock(busMutex);
        if (host == state)
            return;
        host = state;
    }
    callbacks.hostChanged();
}

// Sends a message only if the number differs from the previous one, even if the host was restarted.
void SessionMonitor::forwardHostMessage(std::int32_t number)
{
    if (number == lastHostMessage)
        return;
    lastHostMessage = number;
    callbacks.message(number);
}

// Two different scans show that the host is writing: the next pass scans again, at most `kMaxUnstablePasses`
// times.
void SessionMonitor::refreshBusClients(const LIPC::SessionBuffer& session)
{
    const auto first = scan(session);
    if (!first.changed) {
        unstablePasses = 0;
        return;
    }
    std::this_thread::sleep_for(kWriteTime);
    auto second = scan(session);
    if (second != first && ++unstablePasses < kMaxUnstablePasses)
        return;
    unstablePasses = 0;
    {
        const MutexLock lock(busMutex);
        busClients = std::move(second.table);
    }
    callbacks.message(kMsgBusListChanged);
}

BusScan SessionMonitor::scan(const LIPC::SessionBuffer& session) const
{
    const MutexLock lock(busMutex);
    return scanBuses(session, busClients);
}

void SessionMonitor::getBusNames(std::vector<std::string>& names) const
{
    names.assign(1, kMainBus);
    const MutexLock lock(busMutex);
    for (const auto& [name, id] : busClients) // the map's order is the byte order
        if (name != kMainBus)
            names.push_back(name);
}

void SessionMonitor::setDefaultBus(const std::string& name) const
{
    std::string id;
    {
        const MutexLock lock(busMutex);
        const auto bus = busClients.find(name);
        if (bus == busClients.end())
            return;
        id = bus->second;
    }
    const Session session(paths.sessionSegment.c_str());
    if (session.contents() != nullptr)
        session.contents()->defaultBus = LIPC::ClientID(id.c_str());
}

void SessionMonitor::withAgentRecord(const std::function<void(LIPC::ClientEntry&)>& write) const
{
    if (hostArchMismatch != 0)
        return;
    const Session session(paths.sessionSegment.c_str());
    if (session.contents() == nullptr)
        return;
    if (auto* own = session.contents()->getClientEntry(LIPC::kSettingsClientName))
        write(*own);
}

} // namespace Kest::Settings
