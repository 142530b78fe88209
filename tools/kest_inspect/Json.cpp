#include "tools/kest_inspect/Json.h"

#include "tables/KestSettingsTables.h"
#include "tools/kest_inspect/Words.h"
#include "tools/session_text/Text.h"

#include <juce_core/juce_core.h>

#include <cstdlib>

namespace KestInspect {
namespace {

using juce::var;

class Object {
public:
    Object& with(const char* key, const var& value)
    {
        object->setProperty(key, value);
        return *this;
    }
    var value() const { return object.get(); }

private:
    juce::DynamicObject::Ptr object = new juce::DynamicObject;
};

var utf8(std::string_view text) { return juce::String::fromUTF8(text.data(), static_cast<int>(text.size())); }
var name(std::string_view bytes) { return utf8(nameInUtf8(bytes)); }
var text(std::string_view bytes) { return utf8(textInUtf8(bytes)); }
var textOrNull(std::string_view bytes) { return bytes.empty() ? var() : text(bytes); }

// As it is printed: a float of 0.1 is no 0.10000000149.
var number(float value) { return std::strtod(SessionText::printableNumber(value).c_str(), nullptr); }

var byDefault(int parameter)
{
    const auto found = Kest::Settings::cParameterDefaults.find(parameter);
    return found == Kest::Settings::cParameterDefaults.end() ? var() : number(found->second);
}

Object parameter(int number_, float value)
{
    return Object()
        .with("number", number_)
        .with("name", textOrNull(parameterName(number_)))
        .with("value", number(value))
        .with("meaning", textOrNull(parameterMeaning(number_, value)));
}

Object agentText(int index, const std::string& value)
{
    return Object().with("number", index).with("name", textOrNull(textName(index))).with("text", text(value));
}

Object clientObject(const Client& client)
{
    return Object()
        .with("slot", client.slot)
        .with("id", name(client.id))
        .with("type", text(typeText(client.type)))
        .with("label", name(client.label));
}

// All parameters that the agent or its defaults know, and all others that are not 0.
var agentValue(const AgentRecord& agent)
{
    juce::Array<var> parameters;
    for (int i = 0; i < LIPC::ClientEntry::kParameters; ++i) {
        const float value = agent.parameters[static_cast<std::size_t>(i)];
        if (!parameterName(i).empty() || !byDefault(i).isVoid() || value != 0)
            parameters.add(parameter(i, value).with("default", byDefault(i)).value());
    }
    juce::Array<var> texts;
    for (std::size_t k = 0; k < agent.texts.size(); ++k)
        texts.add(agentText(static_cast<int>(k), agent.texts[k]).value());
    return Object().with("slot", agent.slot).with("parameters", parameters).with("texts", texts).value();
}

var busValue(const std::string& id, const std::string& label)
{
    return id.empty() ? var() : Object().with("id", name(id)).with("label", name(label)).value();
}

var sessionValue(const Session& session)
{
    juce::Array<var> clients;
    for (const auto& client : session.clients)
        clients.add(clientObject(client).value());
    return Object()
        .with("clients", clients)
        .with("agent", session.agent ? agentValue(*session.agent) : var())
        .with("defaultBus", busValue(session.defaultBus, labelOf(session, session.defaultBus)))
        .value();
}

Object event(const char* what) { return Object().with("event", what); }

struct Event {
    Object operator()(const HostUp&) const { return event("hostUp"); }
    Object operator()(const HostDown&) const { return event("hostDown"); }
    Object operator()(const VersionWord& word) const { return event("versionWord").with("bits", word.bits); }
    Object operator()(const ClientCame& came) const
    {
        return event("clientCame").with("client", clientObject(came.client).value());
    }
    Object operator()(const ClientWent& went) const
    {
        return event("clientWent").with("client", clientObject(went.client).value());
    }
    Object operator()(const ClientRenamed& renamed) const
    {
        return event("clientRenamed")
            .with("client", clientObject(renamed.client).value())
            .with("before", name(renamed.before));
    }
    Object operator()(const MessagePosted& message) const
    {
        return event("message")
            .with("number", message.number)
            .with("meaning", textOrNull(messageMeaning(message.number)));
    }
    Object operator()(const ParameterChanged& changed) const
    {
        return event("parameter").with("parameter", parameter(changed.number, changed.value).value());
    }
    Object operator()(const TextChanged& changed) const
    {
        return event("text").with("text", agentText(changed.number, changed.text).value());
    }
    Object operator()(const DefaultBusChanged& bus) const
    {
        return event("defaultBus").with("bus", busValue(bus.id, bus.label));
    }
};

// JUCE writes a bell as \a, which is no JSON, and ends lines with a carriage return too.
std::string strict(const juce::String& json)
{
    std::string out;
    const auto text = json.toStdString();
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool isEscape = text[i] == '\\' && i + 1 < text.size();
        if (isEscape && text[i + 1] == 'a')
            out += "\\u0007";
        else if (isEscape)
            out.append(text, i, 2);
        else if (text[i] != '\r')
            out += text[i];
        i += isEscape ? 1 : 0;
    }
    return out;
}

std::string document(const var& value) { return strict(juce::JSON::toString(value)) + "\n"; }

} // namespace

std::string asJson(const Reading& reading)
{
    return document(Object()
                        .with("versionWord", reading.versionWord ? var(*reading.versionWord) : var())
                        .with("session", reading.session ? sessionValue(*reading.session) : var())
                        .value());
}

std::string asJson(const std::vector<Finding>& findings)
{
    juce::Array<var> rows;
    for (const auto& finding : findings)
        rows.add(Object()
                     .with("rank", rankName(finding.rank).c_str())
                     .with("subject", text(finding.subject))
                     .with("text", text(finding.text))
                     .with("remedy", textOrNull(finding.remedy))
                     .value());
    return document(Object().with("well", isWell(findings)).with("findings", rows).value());
}

std::string asJson(const Change& change, const std::string& time)
{
    const auto object = std::visit(Event{}, change).with("time", time.c_str());
    return strict(juce::JSON::toString(object.value(), true));
}

} // namespace KestInspect
