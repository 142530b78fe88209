// The menu in plain lines of text.
#pragma once

#include "app/MenuSnapshot.h"
#include "text/Printable.h"

#include <string>
#include <vector>

namespace Kest::Terminal {

using App::itemName;
using Text::printable;

inline const std::string kPathSeparator = " > "; // between the names in a path

/// Whether lists of items and searches have the item.
inline bool isListed(const App::ItemProperties& item) { return !item.separator && !item.hidden; }

/// The visible submenus at any depth below an item.
std::vector<App::ItemId> submenusBelow(const App::ItemSnapshot& menu);

/// "(x) " and the like; empty for an item that cannot be on.
std::string markText(const App::ItemProperties& item);

/// The items of a menu, a line each, submenus indented below theirs; hidden ones are left out.
std::vector<std::string> menuLines(const App::ItemSnapshot& menu);

/// A line for each item that came, went or looks different, named by its path ("Default Bus > Dialog").
std::vector<std::string> changeLines(const App::MenuChanges& changes, const App::MenuModel& menu);

} // namespace Kest::Terminal
