// Keeps a damaged settings file away from the store, which would save its defaults over it.
#pragma once

#include <string>
#include <string_view>

namespace Kest::Settings {

/// Whether the text has the form in which the settings are written: "PROPERTIES" with nothing in it but
/// "VALUE" elements of a name and a value, and comments. On anything else the store's parser may hang or
/// overread.
bool isSettingsText(std::string_view text);

/// Renames a settings file of any other form to "<path>.bad", with one log line. A missing file is well.
void setAsideWhenDamaged(const std::string& path);

} // namespace Kest::Settings
