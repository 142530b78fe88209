// The user's home folder, which contains the settings folder.
#pragma once

#include <string>

namespace Kest::Settings {

/// Sets the environment variable HOME to the home folder in the user database if HOME is not set or cannot be
/// used. HOME can be used if it is an absolute path in UTF-8 that leaves 256 bytes of `PATH_MAX` for file
/// names; JUCE and started programs do not check this. If the folder in the database cannot be used either,
/// sets HOME to a path that does not exist. Returns a message for the user if an existing value was replaced;
/// otherwise an empty text. Call it in `main` before any thread starts.
std::string repairHome();

} // namespace Kest::Settings
