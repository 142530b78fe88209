// Checks a settings file before the store's parser gets it, and returns its values.
#pragma once

#include <juce_data_structures/juce_data_structures.h>

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace Kest::Settings {

/// Maximum size in bytes; a hundred times the size that the agent writes. The store reads larger files
/// slowly.
constexpr std::size_t kMaxSettingsBytes = 65536;

/// Returns the values that the store reads from a settings file with this text; nullopt if the file is
/// damaged: larger than `kMaxSettingsBytes`, not accepted by `readXml`, with another root than "PROPERTIES",
/// or with text that the store reads differently from an XML parser or crashes on. Accepts any other form.
std::optional<juce::PropertySet> readSettingsText(std::string_view text);

inline bool isSettingsText(std::string_view text) { return readSettingsText(text).has_value(); }

/// Returns whether the store can write the value unchanged. The store parses each value before it writes it;
/// its parser hangs on some values that begin with "<", and cuts others.
bool canBeWritten(const juce::String& value);

/// Returns the text that the store writes for these values; all of them must be `canBeWritten`. Values that
/// are XML may be formatted differently.
std::string settingsText(const juce::StringPairArray& values);

} // namespace Kest::Settings
