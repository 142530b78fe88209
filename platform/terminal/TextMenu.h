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

/// Returns the item's mark, for example "(x) " for a radio item that is on; an empty text for an item without
/// a mark.
std::string markText(const App::ItemProperties& item);

/// Returns one line for each visible item below `menu`, at any depth, without line feeds. The items of a
/// submenu follow its item and are indented.
std::vector<std::string> menuLines(const App::ItemSnapshot& menu);

/// Returns `MenuEvent::line` for each event of `menuEvents`, for example "changed Default Bus > Dialog: on".
/// Main thread.
std::vector<std::string> changeLines(const App::MenuChanges& changes, const App::MenuModel& menu);

} // namespace Kest::Terminal
