// The agent's logo as pixels, for panels that do not find it by its name.
#pragma once

#include <cstdint>
#include <vector>

namespace Kest::StatusNotifier {

struct Pixmap {
    int side;                       // pixels; the picture is square
    std::vector<std::uint8_t> argb; // four bytes per pixel from the top left, alpha first, not premultiplied
};

/// Returns the logo in a light colour with a dark outline: one of them contrasts with the panel.
Pixmap drawLogo(int side);

} // namespace Kest::StatusNotifier
