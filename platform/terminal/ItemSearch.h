// Finds items by their text: by a part of it, or by a path such as "Speaker Configuration > Stereo".
#pragma once

#include "app/MenuSnapshot.h"

#include <string>
#include <string_view>
#include <vector>

namespace Kest::Terminal {

struct SearchMatch {
    App::ItemId id = App::kStatusMenuId;
    std::string path; // "Speaker Configuration > Stereo"
};

/// Items at any depth that can be seen and whose name holds `part`, from the top down, without regard to
/// case. Every item matches an empty part.
std::vector<SearchMatch> findItems(const App::ItemSnapshot& statusMenu, const std::string& part);

struct FoundItem {
    const App::ItemSnapshot* item = nullptr; // points into the menu that was searched
    std::string error;                       // what was not found or is ambiguous, when `item` is null
};

/// Searches the visible items. Titles must match exactly. Of several items with one title "Title #2" is the
/// second; the title alone finds none of them.
FoundItem findByPath(const App::ItemSnapshot& statusMenu, std::string_view path);

} // namespace Kest::Terminal
