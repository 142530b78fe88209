// The menu in plain lines of text.
#pragma once

#include "app/ItemPath.h"
#include "app/MenuSnapshot.h"
#include "text/Printable.h"

#include <string>
#include <vector>

namespace Kest::Terminal {

using App::isListed;
using App::itemName;
using App::kPathSeparator;
using Text::printable;

/// "(x) " and the like; empty for an item that cannot be on.
std::string markText(const App::ItemProperties& item);

/// The items of a menu, a line each, submenus indented below theirs; hidden ones are left out.
std::vector<std::string> menuLines(const App::ItemSnapshot& menu);

/// A line for each item that came, went or looks different, named by its path ("Default Bus > Dialog").
std::vector<std::string> changeLines(const App::MenuChanges& changes, const App::MenuModel& menu);

} // namespace Kest::Terminal
