#include "tools/k3dhost_simulator/CommandSource.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <poll.h>
#include <unistd.h>

namespace K3DHostSimulator {
namespace {

Failure readWhole(const std::string& path, std::string& text)
{
    std::FILE* file = std::fopen(path.c_str(), "re");
    if (file == nullptr)
        return "cannot read " + path + ": " + std::strerror(errno);
    char piece[4096];
    std::size_t count = 0;
    while ((count = std::fread(piece, 1, sizeof piece, file)) > 0)
        text.append(piece, count);
    const bool failed = std::ferror(file) != 0;
    const int error = errno;
    std::fclose(file);
    if (failed)
        return "cannot read " + path + ": " + std::strerror(error);
    return std::nullopt;
}

} // namespace

Failure CommandSource::readFile(const std::string& path)
{
    std::string text;
    if (auto failure = readWhole(path, text))
        return failure;
    auto scenario = parseScenario(text);
    if (!scenario.error.empty())
        return scenario.error;
    commands.assign(scenario.commands.begin(), scenario.commands.end());
    return std::nullopt;
}

bool CommandSource::beginsWithStart() const
{
    return !commands.empty() && commands.front().kind == Command::Kind::Start;
}

std::optional<std::string> CommandSource::takeLine()
{
    auto length = unread.find('\n');
    if (length == std::string::npos) {
        if (!endSeen || unread.empty())
            return std::nullopt;
        length = unread.size(); // the last line may lack its line feed
    }
    std::string line = unread.substr(0, length);
    unread.erase(0, length + 1);
    return line;
}

std::optional<Command> CommandSource::next(std::string& error)
{
    if (!commands.empty()) {
        auto command = commands.front();
        commands.pop_front();
        return command;
    }
    while (const auto line = takeLine()) {
        const auto parsed = parseLine(*line, ++lineNumber);
        error = parsed.error;
        if (parsed.command || !error.empty())
            return parsed.command;
    }
    return std::nullopt;
}

void CommandSource::sleep(std::chrono::milliseconds atMost)
{
    pollfd source{endSeen ? -1 : input, POLLIN, 0}; // a negative descriptor is passed over
    if (poll(&source, 1, static_cast<int>(atMost.count())) <= 0 || source.revents == 0)
        return;
    char piece[4096];
    const auto count = read(input, piece, sizeof piece);
    if (count > 0)
        unread.append(piece, static_cast<std::size_t>(count));
    else if (count == 0 || (errno != EINTR && errno != EAGAIN))
        endSeen = true;
}

} // namespace K3DHostSimulator
