// Keeps a damaged settings file away from the store, which would save its defaults over it.
#pragma once

#include <string>
#include <string_view>

namespace Kest::Settings {

/// Whether the text has exactly the form in which the settings are written: a header, then "PROPERTIES" with
/// nothing in it but "VALUE" elements of a name and a value.
bool isSettingsText(std::string_view text);

/// Renames a settings file of any other form to "<path>.bad", with one log line. A missing file is well.
void setAsideWhenDamaged(const std::string& path);

} // namespace Kest::Settings
