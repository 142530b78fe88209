// The real path of the settings file, and the temporary files beside it.
#pragma once

#include <juce_data_structures/juce_data_structures.h>

#include <string>

namespace Kest::Settings {

/// Returns the target of a settings file that is a symbolic link, whether the target exists or not. Returns
/// the path itself if the target has no extension, which the store requires: the first save replaces that
/// link by a file.
std::string settingsFileBehindLinks(const std::string& path);

/// Returns the options that make the store use this file.
juce::PropertiesFile::Options storeOptions(const std::string& path);

/// Deletes the temporary files that a process left which was killed while saving.
void removeStaleTempFiles(const std::string& path);

} // namespace Kest::Settings
