// An item of the menu as one row of a screen.
#pragma once

#include "app/MenuSnapshot.h"
#include "platform/terminal/Cells.h"

#include <string>

namespace Kest::Terminal {

/// `width` cells: a pointer when it is the selected one, mark and title, an arrow when there is something
/// below it. An encoding has its progress as a bar behind its name.
std::string rowText(const App::ItemSnapshot& item, bool isSelected, int width, Glyphs glyphs);

} // namespace Kest::Terminal
