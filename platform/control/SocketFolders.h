// The path of the control socket.
#pragma once

#include "backend/SystemPaths.h"

#include <optional>
#include <string>
#include <sys/un.h>
#include <vector>

namespace Kest::Control {

/// Returns the folders that may contain the socket of this user's agent, the preferred one first.
std::vector<std::string> socketFolders(const Settings::SystemPaths& paths);

/// Returns the path of the socket in a folder.
std::string socketPath(const std::string& folder);

/// Returns the address of a socket; nullopt if the path is longer than 107 bytes on Linux or 103 on macOS.
std::optional<sockaddr_un> socketAddress(const std::string& path);

} // namespace Kest::Control
