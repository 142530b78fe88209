#include "platform/statusnotifier/Logo.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace Kest::StatusNotifier {
namespace {

// As WCAG 2 defines them for a grey, 0 to 255.
double luminance(double grey)
{
    const double value = grey / 255;
    return value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
}
double contrast(double a, double b)
{
    const auto [low, high] = std::minmax({luminance(a), luminance(b)});
    return (high + 0.05) / (low + 0.05);
}

TEST(Logo, ContrastsWithEachPanel)
{
    for (const int side : {16, 22, 24, 32, 44, 48, 64})
        for (const double panel : {0.0, 52.0, 128.0, 240.0, 255.0}) {
            const auto pixmap = drawLogo(side);
            int visible = 0;
            for (std::size_t pixel = 0; pixel < pixmap.argb.size(); pixel += 4) {
                const double alpha = pixmap.argb[pixel] / 255.0;
                const double shown = alpha * pixmap.argb[pixel + 1] + (1 - alpha) * panel;
                visible += contrast(shown, panel) >= (panel == 128 ? 3.5 : 4.5) ? 1 : 0;
            }
            EXPECT_GE(visible, side * side / 8) << side << " pixels on " << panel;
        }
}

} // namespace
} // namespace Kest::StatusNotifier
