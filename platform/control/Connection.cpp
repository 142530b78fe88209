#include "platform/control/Connection.h"

#include "platform/control/Request.h"

#include <array>
#include <cerrno>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace Kest::Control {
namespace {

bool isTemporary(int failure) { return failure == EAGAIN || failure == EWOULDBLOCK || failure == EINTR; }

} // namespace

short Connection::events() const
{
    const bool reads = canRequest() && !inputEnded;
    return static_cast<short>((reads ? POLLIN : 0) | (unsentBytes() > 0 ? POLLOUT : 0));
}

void Connection::send(const std::string& text)
{
    if (unsentBytes() == 0)
        stalled = Clock::now();
    output += text;
}

void Connection::write()
{
    const auto count = ::write(socket.get(), output.data() + sent, unsentBytes());
    if (count < 0) {
        isDead = isDead || !isTemporary(errno);
        return;
    }
    sent += static_cast<std::size_t>(count);
    stalled = Clock::now();
    if (unsentBytes() > 0)
        return;
    stalled.reset();
    sent = 0;
    std::string().swap(output);
}

void Connection::read()
{
    std::array<char, 4096> bytes{};
    const auto count = ::read(socket.get(), bytes.data(), bytes.size());
    if (count > 0)
        input.append(bytes.data(), static_cast<std::size_t>(count));
    else if (count == 0)
        inputEnded = true;
    else
        isDead = isDead || !isTemporary(errno);
}

std::optional<std::string> Connection::nextLine()
{
    const auto end = input.find('\n');
    if (!canRequest() || end == std::string::npos || end > kMaxRequestBytes)
        return std::nullopt;
    auto line = input.substr(0, end);
    input.erase(0, end + 1);
    return line;
}

bool Connection::isNextLineTooLong() const
{
    return input.size() > kMaxRequestBytes && input.find('\n') > kMaxRequestBytes;
}

// A client that has closed only its own direction still gets its replies and events.
bool Connection::shouldClose() const
{
    const bool isIdle = !awaitsReply && unsentBytes() == 0;
    const bool hasRequest = input.find('\n') != std::string::npos;
    return isDead || (isIdle && (isClosing || (inputEnded && !watches && !hasRequest)));
}

} // namespace Kest::Control
