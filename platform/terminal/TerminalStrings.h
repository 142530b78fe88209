// What is known of a terminal before and after it is drawn on.
#pragma once

#include <string>

namespace Kest::Terminal {

/// Whether the terminal that TERM names is known and can be drawn on.
bool canPlaceCursor(int terminal);

/// What ends drawing on the terminal that is drawn on now: text to write to it as it is.
std::string farewell();

} // namespace Kest::Terminal
