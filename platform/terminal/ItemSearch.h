// Finds items by a substring of their name.
#pragma once

#include "app/MenuSnapshot.h"

#include <string>
#include <vector>

namespace Kest::Terminal {

struct SearchMatch {
    App::ItemId id = App::kStatusMenuId;
    std::string path; // "Speaker Configuration > Stereo"
};

/// Returns the listed items at any depth whose name contains `part`, from the top down, ignoring case. Every
/// listed item matches an empty `part`.
std::vector<SearchMatch> findItems(const App::ItemSnapshot& statusMenu, const std::string& part);

} // namespace Kest::Terminal
