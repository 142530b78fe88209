#include "tools/k3dhost_simulator/Scenario.h"

#include "lipc/ClientEntry.h"
#include "tools/k3dhost_simulator/LineReader.h"
#include "tools/k3dhost_simulator/ScenarioPlayer.h"
#include "tools/k3dhost_simulator/WriteWatcher.h"

#include <charconv>
#include <cstdlib>

namespace K3DHostSimulator {
namespace {

using std::chrono::milliseconds;

constexpr std::size_t kNameBytes = sizeof(LIPC::ClientEntry::label);
constexpr milliseconds kDefaultTimeout{10'000};
constexpr int kMaxWaitMs = 24 * 60 * 60 * 1000;

// The parsers of the commands' arguments return the error, or an empty text.

std::string quote(std::string_view text) { return "'" + std::string(text) + "'"; }

std::optional<milliseconds> parseDuration(std::string_view text)
{
    int value = 0;
    const auto [unit, failure] = std::from_chars(text.data(), text.data() + text.size(), value);
    const std::string_view suffix = text.substr(static_cast<std::size_t>(unit - text.data()));
    const int factor = suffix == "s" ? 1000 : suffix == "ms" ? 1 : 0;
    if (failure != std::errc() || factor == 0 || value < 0 || value > kMaxWaitMs / factor)
        return std::nullopt;
    return milliseconds(value * factor);
}

std::string parseWaitFor(LineReader& reader, Command& command)
{
    auto limit = std::optional(kDefaultTimeout);
    std::string_view wanted = reader.remainder();
    constexpr std::string_view kWithin = " within ";
    if (const auto within = wanted.rfind(kWithin); within != std::string_view::npos) {
        const auto text = wanted.substr(within + kWithin.size());
        limit = parseDuration(text);
        if (!limit)
            return "invalid time " + quote(text) + "; expected for example 300ms or 2s";
        wanted = wanted.substr(0, within);
    }
    if (!WriteWatcher::hasReportForm(wanted))
        return quote(wanted) + " is not a line that a write of the agent prints";
    command.play = [line = std::string(wanted), limit](auto& player) {
        player.wait(*limit, line);
        return Failure();
    };
    return {};
}

std::string parseWait(LineReader& reader, Command& command)
{
    if (reader.accept("for"))
        return parseWaitFor(reader, command);
    const auto text = reader.remainder();
    const auto duration = parseDuration(text);
    if (!duration)
        return "invalid time " + quote(text) + "; expected for example 300ms or 2s";
    command.play = [duration](auto& player) {
        player.wait(*duration, "");
        return Failure();
    };
    return {};
}

std::string parseBusId(LineReader& reader, std::string& id)
{
    std::string error;
    id = reader.wordOrQuoted(error).value_or("");
    if (!error.empty())
        return "the bus's id: " + error;
    return id.empty() || id.size() > kNameBytes ? "expected a bus id of 1 to 64 bytes" : "";
}

std::string parseBus(LineReader& reader, Command& command)
{
    const bool isAdd = reader.accept("add");
    const bool isRename = !isAdd && reader.accept("rename");
    if (!isAdd && !isRename && !reader.accept("remove"))
        return reader.atEnd() ? "expected bus add, bus remove or bus rename"
                              : "unknown command " + quote("bus " + std::string(reader.word()));
    std::string id;
    std::string error = parseBusId(reader, id);
    if (!error.empty())
        return error;
    if (!isAdd && !isRename) {
        command.play = [id](auto& player) { return player.host().removeBus(id); };
        return reader.atEnd() ? "" : quote(reader.remainder()) + " is unexpected after the bus's id";
    }
    const auto name = reader.lastText(error);
    if (!name)
        return "the bus's name: " + error;
    command.play = [isAdd, id, name = *name](auto& player) {
        return isAdd ? player.host().addBus(id, name) : player.host().renameBus(id, name);
    };
    return name->size() > kNameBytes ? "expected a bus name of at most 64 bytes" : "";
}

std::string parseMessage(LineReader& reader, Command& command)
{
    const std::string text(reader.remainder());
    char* end = nullptr;
    const float number = std::strtof(text.c_str(), &end);
    command.play = [number](auto& player) { return player.host().postMessage(number); };
    return text.empty() || end != text.c_str() + text.size() ? "invalid message number " + quote(text) : "";
}

std::string parseStart(LineReader& reader, Command& command)
{
    const int wordSize = reader.accept("32") ? 32 : 64;
    if (wordSize == 64)
        reader.accept("64");
    const bool withSettings = !reader.accept("without KestSettings");
    command.isStart = true;
    command.play = [wordSize, withSettings](auto& player) { return player.start(wordSize, withSettings); };
    return reader.atEnd() ? "" : "unknown argument of start: " + quote(reader.remainder());
}

std::string parseBare(LineReader& reader, Command& command, void (*play)(ScenarioPlayer&))
{
    command.play = [play](auto& player) {
        play(player);
        return Failure();
    };
    return reader.atEnd() ? "" : quote(reader.remainder()) + " is unexpected after the command";
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
        return parseBare(reader, command, [](auto& player) { player.host().stop(); });
    if (name == "kill")
        return parseBare(reader, command, [](auto&) { ScenarioPlayer::killSelf(); });
    if (name == "end")
        return parseBare(reader, command, [](auto& player) { player.end(); });
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
