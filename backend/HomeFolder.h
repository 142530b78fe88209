// The user's home folder, which contains the settings folder.
#pragma once

#include <string>

namespace Kest::Settings {

/// Checks the environment variable HOME, which JUCE and started programs use without a check. HOME is valid
/// if it is an absolute path in UTF-8 that leaves 256 bytes of `PATH_MAX` for file names. If HOME is not set
/// or not valid, sets it to the home folder in the user database. If that folder is not valid either, sets
/// HOME to a path that does not exist. Returns a message for the user if it has replaced an existing value;
/// otherwise an empty text. Call it in `main` before any thread starts.
std::string repairHome();

} // namespace Kest::Settings
