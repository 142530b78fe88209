// Platform-specific functions for Unix-domain sockets.
#pragma once

#include "backend/Descriptor.h"

#include <optional>
#include <string>
#include <sys/types.h>

namespace Kest::Control {

/// Returns a new stream socket, which does not block and is closed in programs that the agent starts. Returns
/// an empty descriptor and sets `errno` on failure.
Settings::Descriptor makeSocket();

/// Accepts the next waiting connection of a listening socket. Returns a socket, or a failure, as `makeSocket`
/// does.
Settings::Descriptor acceptConnection(int listener);

/// Returns the user whose process created the other end of a connection; nullopt if the system does not
/// report the user.
std::optional<uid_t> peerUser(int connection);

/// Returns the user's folder for sockets: XDG_RUNTIME_DIR, or else the system's default. A folder is used
/// only if it exists, belongs to the user and is not writable by others. Returns an empty text if there is
/// none, and always on macOS.
std::string runtimeFolder();

} // namespace Kest::Control
