// The agent's logo, for front ends that draw it themselves. The SVG files have the same strokes.
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

/// In a square of 16 by 16, with round ends: a K whose arms reach for a source of sound.
constexpr LogoStroke kLogoStrokes[] = {
    {{4, 2.5}, {4, 13.5}},
    {{4, 8.75}, {10, 2.5}},
    {{6.25, 6.5}, {11, 13.5}},
    {{13, 8}, {13, 8}},
};
constexpr double kLogoCanvas = 16;
constexpr double kLogoHalfWidth = 1.1; // of a stroke

} // namespace Kest::App
