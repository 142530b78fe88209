#include "tools/kest_inspect/HostSnapshot.h"

#include "lipc/SessionBuffer.h"
#include "lipc/ShmManaged.h"
#include "lipc/VersionBuffer.h"

#include <algorithm>
#include <chrono>
#include <thread>
#include <tuple>

namespace KestInspect {
namespace {

constexpr int kMaxReads = 5;
// Time for the host to finish writing a name, which takes some nanoseconds.
constexpr std::chrono::milliseconds kWriteTime{1};

AgentRecord agentRecord(int slot, const LIPC::ClientEntry& copy)
{
    AgentRecord agent;
    agent.slot = slot;
    std::ranges::copy(copy.params, agent.parameters.begin());
    std::ranges::transform(copy.strings, agent.texts.begin(), [](const auto& text) { return text.text(); });
    return agent;
}

Session readSession(int segment, const LIPC::SessionBuffer& shared)
{
    Session session;
    session.segment = segment;
    for (int slot = 0; slot < LIPC::SessionBuffer::kSlots; ++slot) {
        const auto& entry = shared.clients[slot];
        // Found as by the agent: by its id alone, in the lowest slot.
        const bool isAgent = !session.agent && entry.id.is(LIPC::kSettingsClientName);
        if (!isAgent && LIPC::loadShared(entry.type) == 0)
            continue;
        const LIPC::ClientEntry copy(entry);
        session.clients.push_back(
            {slot, std::string(copy.id.text()), copy.type, std::string(copy.labelText())});
        if (isAgent)
            session.agent = agentRecord(slot, copy);
    }
    const LIPC::ClientID defaultBus(shared.defaultBus);
    session.defaultBus = defaultBus.text();
    return session;
}

HostSnapshot readOnce(const Kest::Settings::SystemPaths& paths)
{
    HostSnapshot snapshot;
    const LIPC::ShmManagedReadOnly<LIPC::VersionBuffer> version(paths.versionSegment.c_str());
    if (version.contents() != nullptr)
        snapshot.versionWord = LIPC::loadShared(version.contents()->wordSize);
    const LIPC::ShmManagedReadOnly<LIPC::SessionBuffer> session(paths.sessionSegment.c_str());
    if (session.contents() != nullptr)
        snapshot.session = readSession(session.id, *session.contents());
    return snapshot;
}

// Numbers are not compared: they are never half written, and may change all the time.
bool namesAgree(const HostSnapshot& a, const HostSnapshot& b)
{
    if (!a.session || !b.session)
        return a.session.has_value() == b.session.has_value();
    const auto names = [](const Session& session) {
        return std::tuple(session.clients, session.defaultBus,
                          session.agent ? session.agent->texts : AgentRecord{}.texts);
    };
    return names(*a.session) == names(*b.session);
}

} // namespace

HostSnapshot readHost(const Kest::Settings::SystemPaths& paths)
{
    auto snapshot = readOnce(paths);
    for (int reads = 1; reads < kMaxReads; ++reads) {
        if (!snapshot.session)
            return snapshot;
        std::this_thread::sleep_for(kWriteTime);
        auto next = readOnce(paths);
        const bool agree = namesAgree(snapshot, next);
        snapshot = std::move(next);
        if (agree)
            break;
    }
    return snapshot;
}

std::string labelOf(const Session& session, const std::string& id)
{
    const auto found = std::ranges::find(session.clients, id, &Client::id);
    return found == session.clients.end() || id.empty() ? "" : found->label;
}

} // namespace KestInspect
