// Finds items by a substring of their name.
#pragma once

#include "app/MenuSnapshot.h"

#include <string>
#include <vector>

namespace Kest::Terminal {

struct SearchMatch {
    App::ItemId id = App::kStatusMenuId;
    std::string path; // for example "Speaker Configuration > Stereo"; may contain control characters
};

/// Returns the items at any depth whose name contains `part`, in their order in the menu. Ignores case. Omits
/// hidden items, separators and all items below a hidden item. If `part` is empty, returns all items that are
/// not omitted.
std::vector<SearchMatch> findItems(const App::ItemSnapshot& statusMenu, const std::string& part);

} // namespace Kest::Terminal
