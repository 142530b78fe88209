#include "tools/kest_inspect/Changes.h"

#include "lipc/Numeric.h"
#include "lipc/SettingsRecord.h"
#include "tools/kest_inspect/Formatting.h"

#include <bit>
#include <map>

namespace KestInspect {
namespace {

using Changes = std::vector<Printed>;

Printed event(const char* name, const std::string& text, Json::initializer_list_t values = {})
{
    auto json = Json::object({{"event", name}});
    json.update(Json::object(values));
    return {text, json};
}

Printed clientEvent(const char* name, const Client& client, const char* what)
{
    const auto shown = printedClient(client);
    return event(name, shown.text + what, {{"client", shown.json}});
}

Printed renamed(const Client& client, const std::string& before)
{
    auto change = clientEvent("clientRenamed", client, " renamed, was \"");
    change.text += printedName(before) + "\"";
    change.json["before"] = nameInUtf8(before);
    return change;
}

Printed parameterEvent(int number, float value)
{
    if (number != LIPC::kStatusNumberParameter) {
        const auto shown = printedParameter(number, value);
        return event("parameter", shown.text, {{"parameter", shown.json}});
    }
    const auto message = LIPC::round(value);
    const auto meaning = messageMeaning(message);
    return event("message", "message " + std::to_string(message) + inBrackets(meaning),
                 {{"number", message}, {"meaning", textOrNull(meaning)}});
}

bool isSameClient(const Client& a, const Client& b) { return a.id == b.id && a.type == b.type; }

void addClients(const Session& before, const Session& now, Changes& changes)
{
    std::map<int, Client> removed;
    for (const auto& client : before.clients)
        removed.emplace(client.slot, client);
    Changes added;
    for (const auto& client : now.clients) {
        const auto known = removed.find(client.slot);
        if (known == removed.end() || !isSameClient(known->second, client)) {
            added.push_back(clientEvent("clientAdded", client, " added"));
            continue;
        }
        if (known->second.label != client.label)
            added.push_back(renamed(client, known->second.label));
        removed.erase(known);
    }
    for (const auto& [slot, client] : removed)
        changes.push_back(clientEvent("clientRemoved", client, " removed"));
    changes.insert(changes.end(), added.begin(), added.end());
}

// Returns whether a parameter has changed; in a new record, whether it has a name or is not 0, but a host
// message of 0 does not count.
bool isReported(const AgentRecord* before, const AgentRecord& now, int number)
{
    const auto index = static_cast<std::size_t>(number);
    const float value = now.parameters[index];
    if (before == nullptr)
        return value != 0 || (!parameterName(number).empty() && number != LIPC::kStatusNumberParameter);
    return std::bit_cast<std::uint32_t>(value) != std::bit_cast<std::uint32_t>(before->parameters[index]);
}

void addAgent(const AgentRecord* before, const AgentRecord& now, Changes& changes)
{
    for (int number = 0; number < LIPC::ClientEntry::kParameters; ++number)
        if (isReported(before, now, number))
            changes.push_back(parameterEvent(number, now.parameters[static_cast<std::size_t>(number)]));
    for (std::size_t k = 0; k < now.texts.size(); ++k)
        if (now.texts[k] != (before == nullptr ? "" : before->texts[k])) {
            const auto shown = printedText(static_cast<int>(k), now.texts[k]);
            changes.push_back(event("text", shown.text, {{"text", shown.json}}));
        }
}

void addSession(const Session& before, const Session& now, Changes& changes)
{
    addClients(before, now, changes);
    if (now.agent) {
        const bool isKnown = before.agent && before.agent->slot == now.agent->slot;
        addAgent(isKnown ? &*before.agent : nullptr, *now.agent, changes);
    }
    if (now.defaultBus != before.defaultBus) {
        const auto bus = printedBus(now.defaultBus, labelOf(now, now.defaultBus));
        changes.push_back(event("defaultBus", "default bus " + bus.text, {{"bus", bus.json}}));
    }
}

} // namespace

std::vector<Printed> changesBetween(const HostSnapshot& before, const HostSnapshot& now)
{
    Changes changes;
    const bool isSameHost = before.session && now.session && before.session->segment == now.session->segment;
    if (before.session && !isSameHost)
        changes.push_back(event("hostDown", "host down"));
    if (now.session && !isSameHost)
        changes.push_back(event("hostUp", "host up"));
    if (now.versionWord && (now.versionWord != before.versionWord || (now.session && !isSameHost)))
        changes.push_back(event("versionWord", "version word " + printedVersionWord(*now.versionWord),
                                {{"bits", *now.versionWord}}));
    if (now.session)
        addSession(isSameHost ? *before.session : Session{}, *now.session, changes);
    return changes;
}

std::vector<Printed> snapshotAsChanges(const HostSnapshot& first)
{
    auto changes = changesBetween({}, first);
    if (!first.session)
        changes.insert(changes.begin(), event("hostDown", "host down"));
    return changes;
}

} // namespace KestInspect
