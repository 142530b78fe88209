// The strokes of the agent's logo, as in its SVG files, for front ends that draw the logo.
#pragma once

namespace Kest::App {

struct LogoPoint {
    double x;
    double y; // increases downwards; x and y: 0 to `kLogoCanvas`
};

struct LogoStroke {
    LogoPoint from;
    LogoPoint to;
};

/// The logo is a K whose arms point to a dot. The dot is a stroke of length 0. Each stroke has round ends.
constexpr LogoStroke kLogoStrokes[] = {
    {{4, 2.5}, {4, 13.5}},
    {{4, 8.75}, {10, 2.5}},
    {{6.25, 6.5}, {11, 13.5}},
    {{13, 8}, {13, 8}},
};
constexpr double kLogoCanvas = 16;     // side of the square that contains the logo
constexpr double kLogoHalfWidth = 1.1; // half the thickness of a stroke

} // namespace Kest::App
