// Platform-specific functions for Unix-domain sockets.
#pragma once

#include "backend/Descriptor.h"

#include <optional>
#include <string>
#include <sys/types.h>

namespace Kest::Control {

/// Returns a non-blocking stream socket, which is not inherited by programs that the agent starts. Returns an
/// empty descriptor, with `errno` set, on failure.
Settings::Descriptor makeSocket();

/// Accepts the next waiting connection of a listening socket; returns as `makeSocket` does.
Settings::Descriptor acceptConnection(int listener);

/// Returns the user whose process created the other end; nullopt if the system does not report it.
std::optional<uid_t> peerUser(int connection);

/// Returns the user's folder for sockets: of the environment's and the system's default, the first that
/// exists, belongs to the user and is not writable by others. Empty if there is none.
std::string runtimeFolder();

} // namespace Kest::Control
