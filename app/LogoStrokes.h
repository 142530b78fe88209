// The strokes of the agent's logo, the same as in its SVG files, for front ends that draw it.
#pragma once

namespace Kest::App {

struct LogoPoint {
    double x;
    double y; // downwards
};

struct LogoStroke {
    LogoPoint from;
    LogoPoint to;
};

/// A K whose arms point to a dot, a source of sound; in a square of 16 by 16, with round ends.
constexpr LogoStroke kLogoStrokes[] = {
    {{4, 2.5}, {4, 13.5}},
    {{4, 8.75}, {10, 2.5}},
    {{6.25, 6.5}, {11, 13.5}},
    {{13, 8}, {13, 8}},
};
constexpr double kLogoCanvas = 16;
constexpr double kLogoHalfWidth = 1.1; // of a stroke

} // namespace Kest::App
