#include "tools/k3dhost_simulator/Scenario.h"

#include "lipc/ClientEntry.h"
#include "tools/k3dhost_simulator/LineReader.h"
#include "tools/k3dhost_simulator/WriteWatcher.h"

#include <charconv>
#include <cstdlib>

namespace K3DHostSimulator {
namespace {

using std::chrono::milliseconds;

constexpr std::size_t kNameBytes = sizeof(LIPC::ClientEntry::label);
constexpr milliseconds kWaitForAtMost{10'000};
constexpr int kLongestWaitMs = 24 * 60 * 60 * 1000;

// The parsers of the commands' arguments return what is wrong, or an empty text.

std::string quote(std::string_view text) { return "'" + std::string(text) + "'"; }

std::optional<milliseconds> parseDuration(std::string_view text)
{
    int value = 0;
    const auto [unit, failure] = std::from_chars(text.data(), text.data() + text.size(), value);
    const std::string_view suffix = text.substr(static_cast<std::size_t>(unit - text.data()));
    const int factor = suffix == "s" ? 1000 : suffix == "ms" ? 1 : 0;
    if (failure != std::errc() || factor == 0 || value < 0 || value > kLongestWaitMs / factor)
        return std::nullopt;
    return milliseconds(value * factor);
}

std::string parseWaitFor(LineReader& reader, Command& command)
{
    command.kind = Command::Kind::WaitFor;
    command.duration = kWaitForAtMost;
    std::string_view wanted = reader.remainder();
    constexpr std::string_view kWithin = " within ";
    if (const auto within = wanted.rfind(kWithin); within != std::string_view::npos) {
        const auto text = wanted.substr(within + kWithin.size());
        const auto limit = parseDuration(text);
        if (!limit)
            return "wrong time " + quote(text) + " (300ms or 2s)";
        command.duration = *limit;
        wanted = wanted.substr(0, within);
    }
    if (!WriteWatcher::canReport(wanted))
        return quote(wanted) + " is nothing that the agent writes";
    command.text = wanted;
    return {};
}

std::string parseWait(LineReader& reader, Command& command)
{
    if (reader.accept("for"))
        return parseWaitFor(reader, command);
    command.kind = Command::Kind::Wait;
    const auto text = reader.remainder();
    const auto duration = parseDuration(text);
    if (!duration)
        return "wrong time " + quote(text) + " (300ms or 2s)";
    command.duration = *duration;
    return {};
}

std::string parseBusId(LineReader& reader, Command& command)
{
    std::string error;
    const auto id = reader.wordOrQuoted(error);
    if (!id)
        return "the bus's id: " + error;
    if (id->empty() || id->size() > kNameBytes)
        return "a bus's id has 1 to 64 bytes";
    command.id = *id;
    return {};
}

std::string parseBus(LineReader& reader, Command& command)
{
    if (reader.accept("add"))
        command.kind = Command::Kind::BusAdd;
    else if (reader.accept("rename"))
        command.kind = Command::Kind::BusRename;
    else if (reader.accept("remove"))
        command.kind = Command::Kind::BusRemove;
    else
        return reader.atEnd() ? "bus add, bus remove or bus rename"
                              : "unknown command " + quote("bus " + std::string(reader.word()));

    std::string error = parseBusId(reader, command);
    if (!error.empty())
        return error;
    if (command.kind == Command::Kind::BusRemove)
        return reader.atEnd() ? "" : quote(reader.remainder()) + " after the bus's id";

    const auto name = reader.lastText(error);
    if (!name)
        return "the bus's name: " + error;
    if (name->size() > kNameBytes)
        return "a bus's name has at most 64 bytes";
    command.text = *name;
    return {};
}

std::string parseMessage(LineReader& reader, Command& command)
{
    command.kind = Command::Kind::Message;
    const std::string text(reader.remainder());
    char* end = nullptr;
    command.number = std::strtof(text.c_str(), &end);
    if (text.empty() || end != text.c_str() + text.size())
        return "wrong message number " + quote(text);
    return {};
}

std::string parseStart(LineReader& reader, Command& command)
{
    command.kind = Command::Kind::Start;
    if (reader.accept("32"))
        command.wordSize = 32;
    else
        reader.accept("64");
    command.withSettings = !reader.accept("without KestSettings");
    return reader.atEnd() ? "" : "unknown way to start " + quote(reader.remainder());
}

std::string parseBare(LineReader& reader, Command& command, Command::Kind kind)
{
    command.kind = kind;
    return reader.atEnd() ? "" : quote(reader.remainder()) + " after the command";
}

std::string parseCommand(LineReader& reader, Command& command)
{
    const auto name = reader.word();
    if (name == "wait")
        return parseWait(reader, command);
    if (name == "bus")
        return parseBus(reader, command);
    if (name == "message")
        return parseMessage(reader, command);
    if (name == "start")
        return parseStart(reader, command);
    if (name == "stop")
        return parseBare(reader, command, Command::Kind::Stop);
    if (name == "kill")
        return parseBare(reader, command, Command::Kind::Kill);
    if (name == "end")
        return parseBare(reader, command, Command::Kind::End);
    return "unknown command " + quote(name);
}

} // namespace

ParsedLine parseLine(std::string_view text, int number)
{
    LineReader reader(text);
    if (reader.atEnd() || reader.remainder().front() == '#')
        return {};
    Command command;
    command.line = number;
    const auto error = parseCommand(reader, command);
    if (!error.empty())
        return {std::nullopt, "line " + std::to_string(number) + ": " + error};
    return {command, {}};
}

} // namespace K3DHostSimulator
