// Platform-specific functions for Unix-domain sockets.
#pragma once

#include "backend/Descriptor.h"

#include <optional>
#include <string>
#include <sys/types.h>

namespace Kest::Control {

/// Returns a new non-blocking stream socket. Programs that the agent starts do not inherit the socket.
/// Returns an empty descriptor and sets `errno` on failure.
Settings::Descriptor makeSocket();

/// Accepts the next waiting connection of a listening socket. The returned socket is non-blocking and not
/// inherited. If no connection waits, and on failure, returns an empty descriptor and sets `errno`.
Settings::Descriptor acceptConnection(int listener);

/// Returns the id of the user whose process connected or listened at the other end. Returns nullopt if the
/// system does not report the user.
std::optional<uid_t> peerUser(int connection);

/// Returns the user's folder for sockets on Linux: the value of XDG_RUNTIME_DIR, or else /run/user/UID. A
/// folder is used only if it exists, has an absolute path, belongs to the user, and gives neither its group
/// nor others write permission. Returns an empty text if neither folder can be used. Always returns an empty
/// text on macOS.
std::string runtimeFolder();

} // namespace Kest::Control
