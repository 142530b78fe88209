#include "platform/control/Client.h"

#include "platform/control/Socket.h"
#include "platform/control/SocketFolders.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace Kest::Control {
namespace {

using Clock = std::chrono::steady_clock;

// Waits until the descriptor is ready. Returns false at the deadline.
bool waitFor(int descriptor, short events, Client::Deadline deadline)
{
    for (;;) {
        int left = -1;
        if (deadline)
            left = static_cast<int>(std::max<std::int64_t>(
                std::chrono::ceil<std::chrono::milliseconds>(*deadline - Clock::now()).count(), 0));
        pollfd one{descriptor, events, 0};
        const int ready = poll(&one, 1, left);
        if (ready > 0 || (ready < 0 && errno != EINTR))
            return true; // the next call reports an error
        if (ready == 0)
            return false;
    }
}

} // namespace

std::optional<Client> Client::connect(const std::vector<std::string>& folders)
{
    for (const auto& folder : folders) {
        const auto address = socketAddress(socketPath(folder));
        auto socket = makeSocket();
        if (address && socket &&
            ::connect(socket.get(), reinterpret_cast<const sockaddr*>(&*address), sizeof *address) == 0 &&
            peerUser(socket.get()) == geteuid())
            return Client(std::move(socket));
    }
    return std::nullopt;
}

bool Client::send(const std::string& line)
{
    std::signal(SIGPIPE, SIG_IGN);
    const auto text = line + "\n";
    for (std::size_t sent = 0; sent < text.size();) {
        const auto count = write(socket.get(), text.data() + sent, text.size() - sent);
        if (count > 0)
            sent += static_cast<std::size_t>(count);
        else if (errno == EAGAIN || errno == EINTR)
            waitFor(socket.get(), POLLOUT, std::nullopt);
        else
            return false;
    }
    return true;
}

Client::Received Client::receive(std::string& line, Deadline deadline)
{
    for (;;) {
        if (const auto end = input.find('\n', searched); end != std::string::npos) {
            line = input.substr(0, end);
            input.erase(0, end + 1);
            searched = 0;
            return Received::line;
        }
        searched = input.size();
        if (!waitFor(socket.get(), POLLIN, deadline))
            return Received::timeout;
        std::array<char, 16384> bytes{};
        const auto count = read(socket.get(), bytes.data(), bytes.size());
        if (count > 0)
            input.append(bytes.data(), static_cast<std::size_t>(count));
        else if (count == 0 || (errno != EAGAIN && errno != EINTR))
            return Received::end;
    }
}

} // namespace Kest::Control
