// Finds items by a part of their text.
#pragma once

#include "app/MenuSnapshot.h"

#include <string>
#include <vector>

namespace Kest::Terminal {

struct SearchMatch {
    App::ItemId id = App::kStatusMenuId;
    std::string path; // "Speaker Configuration > Stereo"
};

/// Items at any depth that can be seen and whose name holds `part`, from the top down, without regard to
/// case. Every item matches an empty part.
std::vector<SearchMatch> findItems(const App::ItemSnapshot& statusMenu, const std::string& part);

} // namespace Kest::Terminal
