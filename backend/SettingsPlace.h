// Where the settings file really lies, and what may lie about beside it.
#pragma once

#include <juce_data_structures/juce_data_structures.h>

#include <string>

namespace Kest::Settings {

/// The file that a settings file leads to when it is a symbolic link, whether that file exists or not.
/// A link to a name without an extension, which the store cannot use, is taken for the file itself: the
/// first save puts a file in its place.
std::string settingsFileBehindLinks(const std::string& path);

/// What makes the store use this file.
juce::PropertiesFile::Options storeOptions(const std::string& path);

/// Removes the temporary files of a file, which a process that died while saving has left.
void removeStrays(const std::string& path);

} // namespace Kest::Settings
