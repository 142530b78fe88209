#include "platform/statusnotifier/Logo.h"

#include "app/LogoStrokes.h"

#include <algorithm>
#include <cmath>

namespace Kest::StatusNotifier {
namespace {

using Point = App::LogoPoint;

constexpr double kLight = 0xFC;
constexpr double kDark = 0x1C;
constexpr double kOutline = 1.1; // beside a stroke, in the logo's canvas

double distance(Point p, const App::LogoStroke& stroke)
{
    const Point along{stroke.to.x - stroke.from.x, stroke.to.y - stroke.from.y};
    const double length = along.x * along.x + along.y * along.y;
    const double projected = (p.x - stroke.from.x) * along.x + (p.y - stroke.from.y) * along.y;
    const double t = length == 0 ? 0 : std::clamp(projected / length, 0.0, 1.0);
    return std::hypot(p.x - stroke.from.x - t * along.x, p.y - stroke.from.y - t * along.y);
}

double distanceToLogo(Point p)
{
    double nearest = App::kLogoCanvas;
    for (const auto& stroke : App::kLogoStrokes)
        nearest = std::min(nearest, distance(p, stroke));
    return nearest;
}

// Returns how much of a pixel is covered, 0 to 1, by a shape that extends `beyond` its centre.
double coverage(double beyond, double pixel) { return std::clamp(beyond / pixel + 0.5, 0.0, 1.0); }

} // namespace

Pixmap drawLogo(int side)
{
    Pixmap pixmap{side, {}};
    pixmap.argb.reserve(static_cast<std::size_t>(side) * static_cast<std::size_t>(side) * 4);
    const double pixel = App::kLogoCanvas / side;
    for (int y = 0; y < side; ++y)
        for (int x = 0; x < side; ++x) {
            const double inside =
                App::kLogoHalfWidth - distanceToLogo({(x + 0.5) * pixel, (y + 0.5) * pixel});
            const double stroke = coverage(inside, pixel);
            const double whole = coverage(inside + kOutline, pixel);
            const auto alpha = static_cast<std::uint8_t>(std::lround(255 * whole));
            const double shade = whole == 0 ? 0 : kDark + (kLight - kDark) * stroke / whole;
            const auto grey = static_cast<std::uint8_t>(std::lround(shade));
            pixmap.argb.insert(pixmap.argb.end(), {alpha, grey, grey, grey});
        }
    return pixmap;
}

} // namespace Kest::StatusNotifier
