// The agent's end of the control socket.
#pragma once

#include "backend/Descriptor.h"

#include <optional>
#include <string>
#include <sys/types.h>
#include <vector>

namespace Kest::Control {

/// Listens until it is destroyed. The destructor removes the socket, and its folder if that is empty. Does
/// not remove a socket that another process has created at the same path.
class ListeningSocket {
public:
    /// Creates the socket, with mode 0600, in the first of `folders` in which its path is short enough.
    /// Creates that folder, with mode 0700, if it does not exist. `folders` must not be empty. Replaces the
    /// socket of a killed agent, but follows no link and removes no other file. Never blocks. Returns nullopt
    /// and logs one line on failure.
    static std::optional<ListeningSocket> open(const std::vector<std::string>& folders);
    ~ListeningSocket();
    ListeningSocket(ListeningSocket&&) = default;
    ListeningSocket& operator=(ListeningSocket&&) = delete;

    int descriptor() const { return socket.get(); }

private:
    ListeningSocket(Settings::Descriptor listening, std::string boundPath);

    Settings::Descriptor socket;
    std::string path;
    dev_t device = 0; // of the created socket, to recognise it
    ino_t inode = 0;
};

} // namespace Kest::Control
