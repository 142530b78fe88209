// The paths that the control socket can have.
#pragma once

#include "backend/SystemPaths.h"

#include <optional>
#include <string>
#include <sys/un.h>
#include <vector>

namespace Kest::Control {

/// Returns the folders that can contain the socket of this user's agent, the preferred one first. The result
/// is never empty.
std::vector<std::string> socketFolders(const Settings::SystemPaths& paths);

/// Returns the path of the socket in `folder`.
std::string socketPath(const std::string& folder);

/// Returns the address of the socket at `path`; nullopt if the path is longer than 107 bytes on Linux or 103
/// bytes on macOS.
std::optional<sockaddr_un> socketAddress(const std::string& path);

} // namespace Kest::Control
