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

/// Returns one line without a line feed for each visible item below `menu`, at any depth. The items of a
/// submenu follow the item that has the submenu, and are indented further.
std::vector<std::string> menuLines(const App::ItemSnapshot& menu);

/// Returns the `MenuEvent::line` of each event that `App::menuEvents` returns for the changes, for example
/// "changed Default Bus > Dialog: on". Main thread.
std::vector<std::string> changeLines(const App::MenuChanges& changes, const App::MenuModel& menu);

} // namespace Kest::Terminal
