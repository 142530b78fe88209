// The user's home folder, which contains the settings folder.
#pragma once

#include <string>

namespace Kest::Settings {

/// Replaces the environment variable HOME by the home folder of the user database if it is not an absolute
/// path in UTF-8, short enough for the file names in it: JUCE and started programs use it unchecked. `main`
/// calls it once before it starts threads. Returns a line for the user if a value was replaced; an empty text
/// otherwise, also if HOME was not set.
std::string repairHome();

} // namespace Kest::Settings
