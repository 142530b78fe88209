#include "tools/kest_inspect/Printed.h"

#include "lipc/VersionBuffer.h"
#include "tables/KestSettingsTables.h"
#include "text/Printable.h"
#include "tools/kest_inspect/Formatting.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <optional>

namespace KestInspect {
namespace {

using Kest::Text::printable;

std::string shownText(std::string_view bytes) { return Kest::Text::escaped(textInUtf8(bytes)); }

// Returns the number as it is printed: 0.1, not 0.10000000149.
Json jsonNumber(float value) { return std::strtod(printable(value).c_str(), nullptr); }

// Pads with blanks to `width` characters.
std::string column(std::string utf8, std::ptrdiff_t width)
{
    const auto length = std::ranges::count_if(utf8, [](char byte) { return (byte & 0xC0) != 0x80; });
    utf8.append(static_cast<std::size_t>(std::max<std::ptrdiff_t>(width - length, 0)), ' ');
    return utf8;
}

// Returns a row of a table that begins with a number, without blanks at its end.
std::string row(int number, const std::string& columns)
{
    char digits[16];
    std::snprintf(digits, sizeof digits, "%6d  ", number);
    const auto line = digits + columns;
    return line.substr(0, line.find_last_not_of(' ') + 1) + "\n";
}

std::string numbered(int number, std::string_view name)
{
    return std::to_string(number) + (name.empty() ? "" : " ") + std::string(name) + ": ";
}

std::optional<float> defaultOf(int parameter)
{
    const auto found = Kest::Settings::cParameterDefaults.find(parameter);
    return found == Kest::Settings::cParameterDefaults.end() ? std::nullopt : std::optional(found->second);
}

void addClients(const Session& session, Printed& out)
{
    out.text += "clients: " + std::to_string(session.clients.size()) + "\n";
    auto& clients = out.json["clients"] = Json::array();
    for (const auto& client : session.clients) {
        out.text +=
            row(client.slot, column(shownText(typeText(client.type)), 5) + " " +
                                 column(printedName(client.id), 20) + " " + printedName(client.label));
        clients.push_back(printedClient(client).json);
    }
}

// Adds the parameters that have a name or a default, and all others that are not 0.
void addParameters(const AgentRecord& agent, Printed& out)
{
    out.text += "  parameters\n";
    auto& parameters = out.json["parameters"] = Json::array();
    for (int i = 0; i < LIPC::ClientEntry::kParameters; ++i) {
        const float value = agent.parameters[static_cast<std::size_t>(i)];
        const auto defaultValue = defaultOf(i);
        if (parameterName(i).empty() && !defaultValue && value == 0)
            continue;
        out.text += row(i, column(std::string(parameterName(i)), 26) + " " + column(printable(value), 8) +
                               " " + column(defaultValue ? "default " + printable(*defaultValue) : "", 12) +
                               " " + parameterMeaning(i, value));
        parameters.push_back(printedParameter(i, value).json);
        parameters.back()["default"] = defaultValue ? jsonNumber(*defaultValue) : Json();
    }
}

// The text contains only those with a name or a value.
void addTexts(const AgentRecord& agent, Printed& out)
{
    out.text += "  texts\n";
    auto& texts = out.json["texts"] = Json::array();
    for (int k = 0; k < LIPC::ClientEntry::kStrings; ++k) {
        const auto& value = agent.texts[static_cast<std::size_t>(k)];
        if (!value.empty() || !textName(k).empty())
            out.text += row(k, column(std::string(textName(k)), 26) + " " + shownText(value));
        texts.push_back(printedText(k, value).json);
    }
}

Printed printedAgent(const std::optional<AgentRecord>& agent)
{
    if (!agent)
        return {"agent's record: none\n", {}};
    Printed out{"agent's record: slot " + std::to_string(agent->slot) + "\n", {{"slot", agent->slot}}};
    addParameters(*agent, out);
    addTexts(*agent, out);
    return out;
}

Printed printedSession(const Session& session)
{
    Printed out;
    addClients(session, out);
    const auto agent = printedAgent(session.agent);
    const auto bus = printedBus(session.defaultBus, labelOf(session, session.defaultBus));
    out.text += agent.text + "default bus: " + bus.text + "\n";
    out.json["agent"] = agent.json;
    out.json["defaultBus"] = bus.json;
    return out;
}

} // namespace

Printed printed(const HostSnapshot& snapshot)
{
    const auto& word = snapshot.versionWord;
    const auto session = snapshot.session ? printedSession(*snapshot.session)
                                          : Printed{"session: none (kest-inspect doctor shows why)\n", {}};
    return {"version word: " + (word ? printedVersionWord(*word) : "none") + "\n" + session.text,
            {{"versionWord", word ? Json(*word) : Json()}, {"session", session.json}}};
}

Printed printed(const std::vector<Finding>& findings)
{
    Printed out{"", {{"ok", hasNoErrors(findings)}, {"findings", Json::array()}}};
    for (const auto& finding : findings) {
        out.text += column(severityName(finding.severity), 7) + "  " + column(finding.subject, 16) + "  " +
                    shownText(finding.text) + (finding.hint.empty() ? "" : " -> " + shownText(finding.hint)) +
                    "\n";
        out.json["findings"].push_back({{"severity", severityName(finding.severity)},
                                        {"subject", finding.subject},
                                        {"text", textInUtf8(finding.text)},
                                        {"hint", textOrNull(finding.hint)}});
    }
    for (const auto severity : {Severity::ok, Severity::warning, Severity::error}) {
        const auto count = std::ranges::count(findings, severity, &Finding::severity);
        out.text += (severity == Severity::ok ? "" : ", ") + std::to_string(count) + " " +
                    severityName(severity) + (severity == Severity::ok || count == 1 ? "" : "s");
    }
    out.text += "\n";
    return out;
}

// All texts are UTF-8 already; invalid bytes would be replaced and would not throw.
std::string jsonDocument(const Json& json)
{
    return json.dump(2, ' ', true, Json::error_handler_t::replace) + "\n";
}
std::string jsonLine(const Json& json) { return json.dump(-1, ' ', true, Json::error_handler_t::replace); }

Printed printedClient(const Client& client)
{
    return {"client " + shownText(typeText(client.type)) + " " + printedName(client.id) + " \"" +
                printedName(client.label) + "\"",
            {{"slot", client.slot},
             {"id", nameInUtf8(client.id)},
             {"type", textInUtf8(typeText(client.type))},
             {"label", nameInUtf8(client.label)}}};
}

Printed printedParameter(int number, float value)
{
    const auto name = parameterName(number);
    const auto meaning = parameterMeaning(number, value);
    return {"parameter " + numbered(number, name) + printable(value) + inBrackets(meaning),
            {{"number", number},
             {"name", textOrNull(name)},
             {"value", jsonNumber(value)},
             {"meaning", textOrNull(meaning)}}};
}

Printed printedText(int number, const std::string& value)
{
    const auto name = textName(number);
    return {"text " + numbered(number, name) + "\"" + shownText(value) + "\"",
            {{"number", number}, {"name", textOrNull(name)}, {"text", textInUtf8(value)}}};
}

Printed printedBus(const std::string& id, const std::string& label)
{
    if (id.empty())
        return {"none", {}};
    const auto inId = "(id " + printedName(id);
    return {label.empty() ? inId + ", no such client)" : printedName(label) + " " + inId + ")",
            {{"id", nameInUtf8(id)}, {"label", nameInUtf8(label)}}};
}

std::string printedVersionWord(std::int32_t bits)
{
    return bits == LIPC::VersionBuffer::kNotPublished ? "not published yet" : std::to_string(bits);
}

std::string printedName(std::string_view bytes) { return Kest::Text::escaped(nameInUtf8(bytes)); }

std::string inBrackets(const std::string& meaning) { return meaning.empty() ? "" : " (" + meaning + ")"; }

Json textOrNull(std::string_view text) { return text.empty() ? Json() : Json(textInUtf8(text)); }

} // namespace KestInspect
