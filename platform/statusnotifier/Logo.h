// The agent's logo as pixels, for panels that do not find the icon by its name.
#pragma once

#include <cstdint>
#include <vector>

namespace Kest::StatusNotifier {

struct Pixmap {
    int side;                       // width and height in pixels
    std::vector<std::uint8_t> argb; // per pixel: alpha, red, green, blue, not premultiplied; top row first
};

/// Returns the logo in a light colour with a dark outline, so that it is visible on light and dark panels.
/// `side` is in pixels, at least 1.
Pixmap drawLogo(int side);

} // namespace Kest::StatusNotifier
