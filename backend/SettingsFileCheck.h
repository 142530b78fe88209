// Keeps a damaged settings file away from the store's parser.
#pragma once

#include <cstddef>
#include <string_view>

namespace Kest::Settings {

/// In bytes; a hundred times what the agent writes. More than this takes the store long to read.
constexpr std::size_t kLongestSettings = 65536;

/// Whether the text has the form in which the settings are written: "PROPERTIES" with nothing in it but
/// "VALUE" elements of a name and a value, and comments. On anything else the store's parser may hang or
/// overread.
bool isSettingsText(std::string_view text);

} // namespace Kest::Settings
