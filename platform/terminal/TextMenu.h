// Formats the menu as lines of text.
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

/// Returns "(x) " or a similar mark; empty for an item that cannot be on.
std::string markText(const App::ItemProperties& item);

/// Returns one line for each visible item of a menu, those of submenus indented below it.
std::vector<std::string> menuLines(const App::ItemSnapshot& menu);

/// Returns one line for each item that was added, removed or changed, with its path ("Default Bus > Dialog").
std::vector<std::string> changeLines(const App::MenuChanges& changes, const App::MenuModel& menu);

} // namespace Kest::Terminal
