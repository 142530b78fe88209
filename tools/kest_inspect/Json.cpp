#include "tools/kest_inspect/Json.h"

#include "tables/KestSettingsTables.h"
#include "text/Printable.h"
#include "tools/kest_inspect/Words.h"

#include <cstdlib>
#include <nlohmann/json.hpp>

namespace KestInspect {
namespace {

using Json = nlohmann::ordered_json;

Json name(std::string_view bytes) { return nameInUtf8(bytes); }
Json text(std::string_view bytes) { return textInUtf8(bytes); }
Json textOrNull(std::string_view bytes) { return bytes.empty() ? Json() : text(bytes); }

// As it is printed: a float of 0.1 is no 0.10000000149.
Json number(float value) { return std::strtod(Kest::Text::printable(value).c_str(), nullptr); }

Json byDefault(int parameter)
{
    const auto found = Kest::Settings::cParameterDefaults.find(parameter);
    return found == Kest::Settings::cParameterDefaults.end() ? Json() : number(found->second);
}

Json parameter(int index, float value)
{
    return Json::object({{"number", index},
                         {"name", textOrNull(parameterName(index))},
                         {"value", number(value)},
                         {"meaning", textOrNull(parameterMeaning(index, value))}});
}

Json agentText(int index, const std::string& value)
{
    return Json::object({{"number", index}, {"name", textOrNull(textName(index))}, {"text", text(value)}});
}

Json clientValue(const Client& client)
{
    return Json::object({{"slot", client.slot},
                         {"id", name(client.id)},
                         {"type", text(typeText(client.type))},
                         {"label", name(client.label)}});
}

// All parameters that the agent or its defaults know, and all others that are not 0.
Json agentValue(const AgentRecord& agent)
{
    auto parameters = Json::array();
    for (int i = 0; i < LIPC::ClientEntry::kParameters; ++i) {
        const float value = agent.parameters[static_cast<std::size_t>(i)];
        if (parameterName(i).empty() && byDefault(i).is_null() && value == 0)
            continue;
        parameters.push_back(parameter(i, value));
        parameters.back()["default"] = byDefault(i);
    }
    auto texts = Json::array();
    for (std::size_t k = 0; k < agent.texts.size(); ++k)
        texts.push_back(agentText(static_cast<int>(k), agent.texts[k]));
    return Json::object({{"slot", agent.slot}, {"parameters", parameters}, {"texts", texts}});
}

Json busValue(const std::string& id, const std::string& label)
{
    return id.empty() ? Json() : Json::object({{"id", name(id)}, {"label", name(label)}});
}

Json sessionValue(const Session& session)
{
    auto clients = Json::array();
    for (const auto& client : session.clients)
        clients.push_back(clientValue(client));
    return Json::object({{"clients", clients},
                         {"agent", session.agent ? agentValue(*session.agent) : Json()},
                         {"defaultBus", busValue(session.defaultBus, labelOf(session, session.defaultBus))}});
}

/// A change as an object, without its time.
struct Event {
    Json operator()(const HostUp&) const { return event("hostUp"); }
    Json operator()(const HostDown&) const { return event("hostDown"); }
    Json operator()(const VersionWord& word) const { return event("versionWord", {{"bits", word.bits}}); }
    Json operator()(const ClientCame& came) const
    {
        return event("clientCame", {{"client", clientValue(came.client)}});
    }
    Json operator()(const ClientWent& went) const
    {
        return event("clientWent", {{"client", clientValue(went.client)}});
    }
    Json operator()(const ClientRenamed& renamed) const
    {
        return event("clientRenamed",
                     {{"client", clientValue(renamed.client)}, {"before", name(renamed.before)}});
    }
    Json operator()(const MessagePosted& message) const
    {
        return event("message",
                     {{"number", message.number}, {"meaning", textOrNull(messageMeaning(message.number))}});
    }
    Json operator()(const ParameterChanged& changed) const
    {
        return event("parameter", {{"parameter", parameter(changed.number, changed.value)}});
    }
    Json operator()(const TextChanged& changed) const
    {
        return event("text", {{"text", agentText(changed.number, changed.text)}});
    }
    Json operator()(const DefaultBusChanged& bus) const
    {
        return event("defaultBus", {{"bus", busValue(bus.id, bus.label)}});
    }

private:
    static Json event(const char* what, Json::initializer_list_t values = {})
    {
        auto object = Json::object({{"event", what}});
        object.update(Json::object(values));
        return object;
    }
};

// With an indent of -1, all in one line. Texts are UTF-8 by now; what is not would be replaced, not thrown.
std::string ascii(const Json& value, int indent)
{
    return value.dump(indent, ' ', true, Json::error_handler_t::replace);
}

std::string document(const Json& value) { return ascii(value, 2) + "\n"; }

} // namespace

std::string asJson(const Reading& reading)
{
    return document(Json::object({{"versionWord", reading.versionWord ? Json(*reading.versionWord) : Json()},
                                  {"session", reading.session ? sessionValue(*reading.session) : Json()}}));
}

std::string asJson(const std::vector<Finding>& findings)
{
    auto rows = Json::array();
    for (const auto& finding : findings)
        rows.push_back(Json::object({{"rank", rankName(finding.rank)},
                                     {"subject", text(finding.subject)},
                                     {"text", text(finding.text)},
                                     {"remedy", textOrNull(finding.remedy)}}));
    return document(Json::object({{"well", isWell(findings)}, {"findings", rows}}));
}

std::string asJson(const Change& change, const std::string& time)
{
    auto object = std::visit(Event{}, change);
    object["time"] = time;
    return ascii(object, -1);
}

} // namespace KestInspect
