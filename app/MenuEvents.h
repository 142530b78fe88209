// Changes of the menu as readable events.
#pragma once

#include "app/MenuChanges.h"

#include <string>
#include <vector>

namespace Kest::App {

struct MenuEvent {
    enum class Kind : std::uint8_t { added, changed, removed };
    Kind kind = Kind::changed;
    ItemId id = kStatusMenuId;
    std::string path; // "Default Bus > Dialog", printable UTF-8; not unique among items with the same name
    std::string what; // "on", "greyed, 42%"; may be empty for an added or removed item
    /// Returns a line like "changed Default Bus > Dialog: on".
    std::string line() const;
};

/// Returns an event for each listed item that was added, removed or visibly changed. Main thread.
std::vector<MenuEvent> menuEvents(const MenuChanges& changes, const MenuModel& menu);

} // namespace Kest::App
