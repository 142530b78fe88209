#include "platform/control/Socket.h"

#include <fcntl.h>
#include <sys/socket.h>
#include <unistd.h>

namespace Kest::Control {
namespace {

// Sets the flags one by one: macOS has no call that sets all of them at once.
Settings::Descriptor configured(Settings::Descriptor socket)
{
    const int yes = 1;
    if (!socket || fcntl(socket.get(), F_SETFD, FD_CLOEXEC) != 0 ||
        fcntl(socket.get(), F_SETFL, O_NONBLOCK) != 0 ||
        setsockopt(socket.get(), SOL_SOCKET, SO_NOSIGPIPE, &yes, sizeof yes) != 0)
        return {};
    return socket;
}

} // namespace

Settings::Descriptor makeSocket()
{
    return configured(Settings::Descriptor(socket(AF_UNIX, SOCK_STREAM, 0)));
}

Settings::Descriptor acceptConnection(int listener)
{
    return configured(Settings::Descriptor(accept(listener, nullptr, nullptr)));
}

std::optional<uid_t> peerUser(int connection)
{
    uid_t user = 0;
    gid_t group = 0;
    if (getpeereid(connection, &user, &group) != 0)
        return std::nullopt;
    return user;
}

// Not used, since macOS cleans up temporary folders while the agent runs.
std::string runtimeFolder() { return {}; }

} // namespace Kest::Control
