// Changes of the menu as a reader sees them.
#pragma once

#include "app/MenuChanges.h"

#include <string>
#include <vector>

namespace Kest::App {

struct MenuEvent {
    enum class Kind : std::uint8_t { added, changed, removed };
    Kind kind = Kind::changed;
    ItemId id = kStatusMenuId;
    std::string path; // "Default Bus > Dialog", printable UTF-8; items with one name have one path
    std::string
        what; // "on", "greyed, 42%"; empty when nothing is to be said but that it was added or removed
    /// "changed Default Bus > Dialog: on"
    std::string line() const;
};

/// Returns an event for each listed item that was added, removed or looks different. Main thread.
std::vector<MenuEvent> menuEvents(const MenuChanges& changes, const MenuModel& menu);

} // namespace Kest::App
