#include "tools/kest_inspect/PlainText.h"

#include "lipc/VersionBuffer.h"
#include "tables/KestSettingsTables.h"
#include "text/Printable.h"
#include "tools/kest_inspect/Words.h"

#include <algorithm>
#include <cstdio>

namespace KestInspect {
namespace {

using Kest::Text::printable;

std::string name(std::string_view bytes) { return Kest::Text::escaped(nameInUtf8(bytes)); }
std::string text(std::string_view bytes) { return Kest::Text::escaped(textInUtf8(bytes)); }

// Filled up with blanks to a number of characters.
std::string column(std::string utf8, std::ptrdiff_t width)
{
    const auto length = std::ranges::count_if(utf8, [](char byte) { return (byte & 0xC0) != 0x80; });
    utf8.append(static_cast<std::size_t>(std::max<std::ptrdiff_t>(width - length, 0)), ' ');
    return utf8;
}

std::string number(int value, int width)
{
    char digits[16];
    std::snprintf(digits, sizeof digits, "%*d", width, value);
    return digits;
}

std::string withoutBlanksAtEnd(std::string line)
{
    line.erase(line.find_last_not_of(' ') + 1);
    return line + "\n";
}

std::string wordText(std::int32_t bits)
{
    return bits == LIPC::VersionBuffer::kNotPublished ? "not published yet" : std::to_string(bits);
}

std::string clientRows(const Session& session)
{
    std::string rows = "clients: " + std::to_string(session.clients.size()) + "\n";
    for (const auto& client : session.clients)
        rows += withoutBlanksAtEnd(number(client.slot, 6) + "  " + column(text(typeText(client.type)), 5) +
                                   " " + column(name(client.id), 20) + " " + name(client.label));
    return rows;
}

// A row for each parameter that has a name, a default or a value.
std::string parameterRows(const AgentRecord& agent)
{
    std::string rows;
    for (int i = 0; i < LIPC::ClientEntry::kParameters; ++i) {
        const float value = agent.parameters[static_cast<std::size_t>(i)];
        const auto usual = Kest::Settings::cParameterDefaults.find(i);
        const bool hasDefault = usual != Kest::Settings::cParameterDefaults.end();
        if (parameterName(i).empty() && !hasDefault && value == 0)
            continue;
        const auto byDefault = hasDefault ? "default " + printable(usual->second) : "";
        rows += withoutBlanksAtEnd(number(i, 6) + "  " + column(std::string(parameterName(i)), 26) + " " +
                                   column(printable(value), 8) + " " + column(byDefault, 12) + " " +
                                   parameterMeaning(i, value));
    }
    return rows;
}

std::string textRows(const AgentRecord& agent)
{
    std::string rows;
    for (int k = 0; k < LIPC::ClientEntry::kStrings; ++k) {
        const auto& value = agent.texts[static_cast<std::size_t>(k)];
        if (!value.empty() || !textName(k).empty())
            rows += withoutBlanksAtEnd(number(k, 6) + "  " + column(std::string(textName(k)), 26) + " " +
                                       text(value));
    }
    return rows;
}

std::string agentRows(const Session& session)
{
    if (!session.agent)
        return "agent's record: none\n";
    return "agent's record: slot " + std::to_string(session.agent->slot) + "\n  parameters\n" +
           parameterRows(*session.agent) + "  texts\n" + textRows(*session.agent);
}

std::string busText(const std::string& id, const std::string& label)
{
    if (id.empty())
        return "none";
    return label.empty() ? "(id " + name(id) + ", no such client)" : name(label) + " (id " + name(id) + ")";
}

std::string clientText(const Client& client)
{
    return "client " + text(typeText(client.type)) + " " + name(client.id) + " \"" + name(client.label) +
           "\"";
}

std::string numbered(int number, std::string_view itsName)
{
    return std::to_string(number) + (itsName.empty() ? "" : " " + std::string(itsName));
}

std::string inBrackets(const std::string& meaning) { return meaning.empty() ? "" : " (" + meaning + ")"; }

struct Line {
    std::string operator()(const HostUp&) const { return "host up"; }
    std::string operator()(const HostDown&) const { return "host down"; }
    std::string operator()(const VersionWord& word) const { return "version word " + wordText(word.bits); }
    std::string operator()(const ClientCame& came) const { return clientText(came.client) + " came"; }
    std::string operator()(const ClientWent& went) const { return clientText(went.client) + " went"; }
    std::string operator()(const ClientRenamed& renamed) const
    {
        return clientText(renamed.client) + " renamed, was \"" + name(renamed.before) + "\"";
    }
    std::string operator()(const MessagePosted& message) const
    {
        return "message " + std::to_string(message.number) + inBrackets(messageMeaning(message.number));
    }
    std::string operator()(const ParameterChanged& changed) const
    {
        return "parameter " + numbered(changed.number, parameterName(changed.number)) + ": " +
               printable(changed.value) + inBrackets(parameterMeaning(changed.number, changed.value));
    }
    std::string operator()(const TextChanged& changed) const
    {
        return "text " + numbered(changed.number, textName(changed.number)) + ": \"" + text(changed.text) +
               "\"";
    }
    std::string operator()(const DefaultBusChanged& bus) const
    {
        return "default bus " + busText(bus.id, bus.label);
    }
};

} // namespace

std::string asText(const Reading& reading)
{
    std::string lines =
        "version word: " + (reading.versionWord ? wordText(*reading.versionWord) : std::string("none")) +
        "\n";
    if (!reading.session)
        return lines + "session: none (kest-inspect doctor tells why)\n";
    const auto& session = *reading.session;
    return lines + clientRows(session) + agentRows(session) +
           "default bus: " + busText(session.defaultBus, labelOf(session, session.defaultBus)) + "\n";
}

std::string asText(const std::vector<Finding>& findings)
{
    std::string lines;
    for (const auto& finding : findings)
        lines += column(rankName(finding.rank), 5) + "  " + column(finding.subject, 15) + "  " +
                 text(finding.text) + (finding.remedy.empty() ? "" : " -> " + text(finding.remedy)) + "\n";
    const auto count = [&](Rank rank) {
        return std::to_string(std::ranges::count(findings, rank, &Finding::rank)) + " " + rankName(rank);
    };
    return lines + count(Rank::ok) + ", " + count(Rank::note) + ", " + count(Rank::wrong) + "\n";
}

std::string asText(const Change& change) { return std::visit(Line{}, change); }

} // namespace KestInspect
