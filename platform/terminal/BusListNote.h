// What there is to tell of the session's buses: how many, and when that was last another list.
#pragma once

#include "app/MenuSnapshot.h"

#include <ctime>
#include <string>
#include <vector>

namespace Kest::Terminal {

/// Knows the buses by the menu that offers them. The first list that it sees counts as no change.
class BusListNote {
public:
    /// The menu at a moment, in seconds since 1970.
    void look(const App::ItemSnapshot& statusMenu, std::time_t now);
    /// "2 buses, changed 14:03:07" in local time.
    std::string text() const;

private:
    std::vector<std::string> names;
    std::time_t changed = 0; // 0: not yet
};

} // namespace Kest::Terminal
