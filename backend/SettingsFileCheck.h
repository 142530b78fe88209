// What a settings file contains as the store reads it, checked before the store's parser gets it.
#pragma once

#include <juce_data_structures/juce_data_structures.h>

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace Kest::Settings {

/// In bytes; a hundred times what the agent writes. More than this takes the store long to read.
constexpr std::size_t kLongestSettings = 65536;

/// Returns the values that the store reads from a settings file with this text; nullopt where the file is
/// damaged: larger than `kLongestSettings`, not accepted by `readXml`, with another root than "PROPERTIES",
/// or text that the store reads otherwise than an XML parser does, or crashes on. Any other form is accepted.
std::optional<juce::PropertySet> readSettingsText(std::string_view text);

inline bool isSettingsText(std::string_view text) { return readSettingsText(text).has_value(); }

/// Whether the store can write the value and keeps what it means. The store's parser gets each value before
/// it is written; it hangs on some that begin with "<", and cuts others.
bool canBeWritten(const juce::String& value);

/// Returns the file's text as the store writes these values, which all `canBeWritten`. In another form than
/// before may be written what is XML itself.
std::string settingsText(const juce::StringPairArray& values);

} // namespace Kest::Settings
