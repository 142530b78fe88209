#include "tools/kest_inspect/Changes.h"

#include "lipc/Numeric.h"
#include "lipc/SettingsRecord.h"
#include "tools/kest_inspect/Words.h"

#include <bit>
#include <map>

namespace KestInspect {
namespace {

using Changes = std::vector<Change>;

bool isSameClient(const Client& a, const Client& b) { return a.id == b.id && a.type == b.type; }

void addClients(const Session& before, const Session& now, Changes& changes)
{
    std::map<int, Client> gone;
    for (const auto& client : before.clients)
        gone.emplace(client.slot, client);
    Changes came;
    for (const auto& client : now.clients) {
        const auto known = gone.find(client.slot);
        if (known == gone.end() || !isSameClient(known->second, client)) {
            came.emplace_back(ClientCame{client});
            continue;
        }
        if (known->second.label != client.label)
            came.emplace_back(ClientRenamed{client, known->second.label});
        gone.erase(known);
    }
    for (const auto& [slot, client] : gone)
        changes.emplace_back(ClientWent{client});
    changes.insert(changes.end(), came.begin(), came.end());
}

// Of a record that is new, the parameters that have a name, and all that are not 0.
bool isToTell(const AgentRecord* before, const AgentRecord& now, int number)
{
    const auto index = static_cast<std::size_t>(number);
    const float value = now.parameters[index];
    if (before == nullptr)
        return value != 0 || (!parameterName(number).empty() && number != LIPC::eHostMessage);
    return std::bit_cast<std::uint32_t>(value) != std::bit_cast<std::uint32_t>(before->parameters[index]);
}

void addAgent(const AgentRecord* before, const AgentRecord& now, Changes& changes)
{
    for (int number = 0; number < LIPC::ClientEntry::kParameters; ++number) {
        if (!isToTell(before, now, number))
            continue;
        const float value = now.parameters[static_cast<std::size_t>(number)];
        if (number == LIPC::eHostMessage)
            changes.emplace_back(MessagePosted{LIPC::round(value)});
        else
            changes.emplace_back(ParameterChanged{number, value});
    }
    for (std::size_t k = 0; k < now.texts.size(); ++k)
        if (now.texts[k] != (before == nullptr ? "" : before->texts[k]))
            changes.emplace_back(TextChanged{static_cast<int>(k), now.texts[k]});
}

void addSession(const Session& before, const Session& now, Changes& changes)
{
    addClients(before, now, changes);
    if (now.agent) {
        const bool isKnown = before.agent && before.agent->slot == now.agent->slot;
        addAgent(isKnown ? &*before.agent : nullptr, *now.agent, changes);
    }
    if (now.defaultBus != before.defaultBus)
        changes.emplace_back(DefaultBusChanged{now.defaultBus, labelOf(now, now.defaultBus)});
}

} // namespace

std::vector<Change> changesBetween(const Reading& before, const Reading& now)
{
    Changes changes;
    const bool isSameHost = before.session && now.session && before.session->segment == now.session->segment;
    if (before.session && !isSameHost)
        changes.emplace_back(HostDown{});
    if (now.session && !isSameHost)
        changes.emplace_back(HostUp{});
    if (now.versionWord && (now.versionWord != before.versionWord || (now.session && !isSameHost)))
        changes.emplace_back(VersionWord{*now.versionWord});
    if (now.session)
        addSession(isSameHost ? *before.session : Session{}, *now.session, changes);
    return changes;
}

std::vector<Change> changesUpTo(const Reading& now)
{
    auto changes = changesBetween({}, now);
    if (!now.session)
        changes.emplace(changes.begin(), HostDown{});
    return changes;
}

} // namespace KestInspect
