#include "platform/control/Socket.h"

#include <cstdlib>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Kest::Control {

Settings::Descriptor makeSocket()
{
    return Settings::Descriptor(socket(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
}

Settings::Descriptor acceptConnection(int listener)
{
    return Settings::Descriptor(accept4(listener, nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC));
}

std::optional<uid_t> peerUser(int connection)
{
    ucred peer{};
    socklen_t size = sizeof peer;
    if (getsockopt(connection, SOL_SOCKET, SO_PEERCRED, &peer, &size) != 0)
        return std::nullopt;
    return peer.uid;
}

std::string runtimeFolder()
{
    const char* named = std::getenv("XDG_RUNTIME_DIR");
    for (const auto& folder :
         {std::string(named == nullptr ? "" : named), "/run/user/" + std::to_string(geteuid())}) {
        struct stat status {};
        if (folder.starts_with('/') && stat(folder.c_str(), &status) == 0 && S_ISDIR(status.st_mode) &&
            status.st_uid == geteuid() && (status.st_mode & (S_IWGRP | S_IWOTH)) == 0)
            return folder;
    }
    return {};
}

} // namespace Kest::Control
