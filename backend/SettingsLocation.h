// The real path of the settings file, and the temporary files beside it. "The store" is
// `juce::PropertiesFile`.
#pragma once

#include <juce_data_structures/juce_data_structures.h>

#include <string>

namespace Kest::Settings {

/// Returns the path of the file to save: `path`, or its target if `path` is a symbolic link. The target need
/// not exist. If more than 40 links follow each other, or if the target lacks the file extension that the
/// store requires, returns `path`; the first save then replaces the link by a file.
std::string settingsFileBehindLinks(const std::string& path);

/// Returns options with which the store uses the file at the absolute `path`.
juce::PropertiesFile::Options storeOptions(const std::string& path);

/// Deletes the temporary files that the store has created beside the file at `path`. Such a file remains if a
/// process is killed while it saves settings. Call this function only while no process saves settings.
void removeStaleTempFiles(const std::string& path);

} // namespace Kest::Settings
