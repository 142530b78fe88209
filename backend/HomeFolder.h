// The user's home folder, which contains the settings folder.
#pragma once

#include <string>

namespace Kest::Settings {

/// Sets the environment variable HOME to the home folder in the user database if HOME is not set or cannot be
/// used. HOME must be an absolute path in UTF-8, short enough for the file names in the folder, because JUCE
/// and started programs do not check it. If the folder in the database cannot be used either, HOME is set to
/// a path that does not exist.
/// Returns a message for the user if an existing value was replaced; otherwise an empty text. Call it in
/// `main` before any thread starts.
std::string repairHome();

} // namespace Kest::Settings
