// The agent's end of the control socket.
#pragma once

#include "backend/Descriptor.h"

#include <optional>
#include <string>
#include <sys/types.h>
#include <vector>

namespace Kest::Control {

/// Listens until destroyed; the destructor removes the socket, and its folder if empty.
class ListeningSocket {
public:
    /// Creates the socket with mode 0600 in the first folder whose path is short enough; creates that folder
    /// with mode 0700. Replaces the socket of a killed agent, but follows or removes no other file. Never
    /// blocks. nullopt, with one log line, on failure.
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
