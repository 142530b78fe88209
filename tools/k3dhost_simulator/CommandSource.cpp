#include "tools/k3dhost_simulator/CommandSource.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

namespace K3DHostSimulator {

Failure CommandSource::readFile(const std::string& path)
{
    input = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    int failure = input < 0 ? errno : 0;
    while (failure == 0 && !endSeen)
        failure = readPiece();
    if (input >= 0)
        close(input);
    if (failure != 0)
        return "cannot read " + path + ": " + std::strerror(failure);
    std::string error;
    while (const auto command = parseNext(error))
        commands.push_back(*command);
    input = -1; // the host keeps running after the end of the file
    endSeen = false;
    return error.empty() ? std::nullopt : Failure(error);
}

bool CommandSource::beginsWithStart() const { return !commands.empty() && commands.front().isStart; }

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
    return parseNext(error);
}

std::optional<Command> CommandSource::parseNext(std::string& error)
{
    while (const auto line = takeLine()) {
        const auto parsed = parseLine(*line, ++lineNumber);
        error = parsed.error;
        if (parsed.command || !error.empty())
            return parsed.command;
    }
    return std::nullopt;
}

void CommandSource::waitForInput(std::chrono::milliseconds timeLimit)
{
    pollfd source{endSeen ? -1 : input, POLLIN, 0}; // poll ignores a negative descriptor
    if (poll(&source, 1, static_cast<int>(timeLimit.count())) <= 0 || source.revents == 0)
        return;
    readPiece();
}

// Returns the error number of a failure that ends the input, else 0.
int CommandSource::readPiece()
{
    char piece[4096];
    const auto count = read(input, piece, sizeof piece);
    if (count > 0)
        unread.append(piece, static_cast<std::size_t>(count));
    const bool failed = count < 0 && errno != EINTR && errno != EAGAIN;
    endSeen = count == 0 || failed;
    return failed ? errno : 0;
}

} // namespace K3DHostSimulator
