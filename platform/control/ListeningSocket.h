// The agent's end of the control socket.
#pragma once

#include "backend/Descriptor.h"

#include <optional>
#include <string>
#include <sys/types.h>
#include <vector>

namespace Kest::Control {

/// Owns a listening socket. The destructor removes the socket file, and then its folder if the folder is
/// empty. If another file now has the path of the socket, the destructor removes nothing.
class ListeningSocket {
public:
    /// Creates the socket with mode 0600 in the first of `folders` in which its path is not too long for a
    /// socket. Creates the folder if it does not exist. Sets the folder's mode to 0700 if other users have
    /// access. Replaces the socket of a killed agent of this user. Fails if the path belongs to a running
    /// agent or to any other file. Also fails if the folder belongs to another user or is a link. `folders`
    /// must not be empty. Never blocks. Returns nullopt and logs one line on failure.
    static std::optional<ListeningSocket> open(const std::vector<std::string>& folders);
    ~ListeningSocket();
    ListeningSocket(ListeningSocket&&) = default;
    ListeningSocket& operator=(ListeningSocket&&) = delete;

    int descriptor() const { return socket.get(); }

private:
    ListeningSocket(Settings::Descriptor listening, std::string boundPath);

    Settings::Descriptor socket;
    std::string path;
    dev_t device = 0; // `device` and `inode` identify the created socket
    ino_t inode = 0;
};

} // namespace Kest::Control
