// Changes of the menu as events with readable texts.
#pragma once

#include "app/MenuChanges.h"

#include <string>
#include <vector>

namespace Kest::App {

struct MenuEvent {
    enum class Kind : std::uint8_t { added, changed, removed };
    Kind kind = Kind::changed;
    ItemId id = kStatusMenuId;
    // Printable UTF-8, for example "Default Bus > Dialog". Equal names are not numbered, so several items may
    // have the same path.
    std::string path;
    std::string what; // the new state, such as "greyed, 42%"; empty if removed; may be empty if added
    /// Returns the event as one line without a line feed, for example "changed Default Bus > Dialog: on".
    std::string line() const;
};

/// Returns one event for each item that was added, removed or visibly changed. An item that becomes hidden or
/// visible counts as changed. Omits separators, all other hidden items, and all items in the submenu of a
/// hidden, added or removed item. `changes` must be the last changes taken from `menu`, which must be
/// unchanged since. Main thread.
std::vector<MenuEvent> menuEvents(const MenuChanges& changes, const MenuModel& menu);

} // namespace Kest::App
