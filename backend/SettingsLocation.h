// The real path of the settings file, and the temporary files beside it. "Store": JUCE's settings class.
#pragma once

#include <juce_data_structures/juce_data_structures.h>

#include <string>

namespace Kest::Settings {

/// Returns the path of the file to save: `path`, or its target if `path` is a symbolic link. The target need
/// not exist. Exception: returns `path` if there are too many links, or if the target lacks the file
/// extension that the store requires. The first save then replaces the link by a file.
std::string settingsFileBehindLinks(const std::string& path);

/// Returns options with which the store uses the file at the absolute `path`.
juce::PropertiesFile::Options storeOptions(const std::string& path);

/// Deletes the temporary files of the store beside the file at `path`. These files remain if a process was
/// killed while it saved settings.
void removeStaleTempFiles(const std::string& path);

} // namespace Kest::Settings
