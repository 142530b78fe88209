// The home folder of the user, on which the path of the settings file is based.
#pragma once

#include <string>

namespace Kest::Settings {

/// Replaces the environment variable HOME by the home folder of the user database when it is not an absolute
/// path in UTF-8 that leaves room for the names in it: JUCE, and programs that are started, take it as it is.
/// Called once by `main`, before there are threads. Returns a line for the user when a value was replaced;
/// else, also when HOME was not set, an empty text.
std::string repairHome();

} // namespace Kest::Settings
