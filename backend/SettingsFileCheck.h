// Checks a settings file before the store (JUCE's class for settings) parses it, and returns its values.
#pragma once

#include <juce_data_structures/juce_data_structures.h>

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace Kest::Settings {

/// Maximum size of a settings file in bytes, about a hundred times the size of the agent's file. The store
/// reads larger files slowly.
constexpr std::size_t kMaxSettingsBytes = 65536;

/// Returns the values that the store reads from a settings file with this text; nullopt if the file is
/// damaged. A file is damaged if it is larger than `kMaxSettingsBytes`, if `readXml` (XmlOutline.h) does not
/// accept it, if its root element is not "PROPERTIES", or if the store would crash on it or read it
/// differently from an XML parser. The formatting of the XML does not matter.
std::optional<juce::PropertySet> readSettingsText(std::string_view text);

inline bool isSettingsText(std::string_view text) { return readSettingsText(text).has_value(); }

/// Returns whether the store can write the value unchanged, except for the formatting of XML. The store
/// parses a value that begins with "<" as XML; its parser hangs on some of these values and cuts others.
bool canBeWritten(const juce::String& value);

/// Returns the text that the store writes for these values, each of which `canBeWritten` must accept. A value
/// that is XML may be formatted differently in the result.
std::string settingsText(const juce::StringPairArray& values);

} // namespace Kest::Settings
