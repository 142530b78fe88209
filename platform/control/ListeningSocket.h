// The agent's end of the control socket.
#pragma once

#include "backend/Descriptor.h"

#include <optional>
#include <string>
#include <sys/types.h>
#include <vector>

namespace Kest::Control {

/// Listens until it is destroyed, which removes the socket, and its folder if that is empty.
class ListeningSocket {
public:
    /// Makes the socket with mode 0600 in the first folder whose path is short enough; makes that folder with
    /// mode 0700. Replaces the socket that a killed agent has left, and follows or removes nothing else that
    /// is there. Never blocks. nullopt, with one log line, on failure.
    static std::optional<ListeningSocket> open(const std::vector<std::string>& folders);
    ~ListeningSocket();
    ListeningSocket(ListeningSocket&&) = default;
    ListeningSocket& operator=(ListeningSocket&&) = delete;

    int descriptor() const { return socket.get(); }

private:
    ListeningSocket(Settings::Descriptor listening, std::string boundPath);

    Settings::Descriptor socket;
    std::string path;
    dev_t device = 0;
    ino_t inode = 0;
};

} // namespace Kest::Control
