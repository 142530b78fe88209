// What the terminal library reports of keys and mouse, in the menu's words.
#pragma once

#include "platform/terminal/MenuScreen.h"

#include <cwchar>

namespace Kest::Terminal {

/// A typed character, control characters too.
Input inputOfCharacter(std::wint_t character);
/// A KEY_ code.
Input inputOfKey(int code);
/// The events of the mouse that `inputOfMouse` knows, as `mousemask` takes them.
unsigned long mouseEvents();
/// A button's state, and the line of the screen that it is on.
Input inputOfMouse(unsigned long buttons, int line);

} // namespace Kest::Terminal
