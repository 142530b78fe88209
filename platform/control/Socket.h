// What systems differ in about Unix-domain sockets.
#pragma once

#include "backend/Descriptor.h"

#include <optional>
#include <string>
#include <sys/types.h>

namespace Kest::Control {

/// Returns a stream socket that does not block, which programs that the agent starts do not inherit. None,
/// with errno, on failure.
Settings::Descriptor makeSocket();

/// The same for the next waiting connection of a listening socket.
Settings::Descriptor acceptConnection(int listener);

/// Returns the user whose process made the other end; nullopt when the system does not report it.
std::optional<uid_t> peerUser(int connection);

/// Returns the user's folder for sockets, as the environment names it and where the system keeps it by
/// default: the first that exists, belongs to the user and can be written by nobody else. Empty without one.
std::string runtimeFolder();

} // namespace Kest::Control
