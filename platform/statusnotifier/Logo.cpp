#include "platform/statusnotifier/Logo.h"

#include "app/LogoStrokes.h"

#include <algorithm>
#include <cmath>

namespace Kest::StatusNotifier {
namespace {

using Point = App::LogoPoint;

constexpr std::uint8_t kGrey = 0x9A;

double distance(Point p, const App::LogoStroke& stroke)
{
    const Point along{stroke.to.x - stroke.from.x, stroke.to.y - stroke.from.y};
    const double length = along.x * along.x + along.y * along.y;
    const double projected = (p.x - stroke.from.x) * along.x + (p.y - stroke.from.y) * along.y;
    const double t = length == 0 ? 0 : std::clamp(projected / length, 0.0, 1.0);
    return std::hypot(p.x - stroke.from.x - t * along.x, p.y - stroke.from.y - t * along.y);
}

// How much of a pixel of that size around a point is covered, 0 to 1.
double coverage(Point p, double pixel)
{
    double nearest = App::kLogoCanvas;
    for (const auto& stroke : App::kLogoStrokes)
        nearest = std::min(nearest, distance(p, stroke));
    return std::clamp((App::kLogoHalfWidth - nearest) / pixel + 0.5, 0.0, 1.0);
}

} // namespace

Pixmap drawLogo(int side)
{
    Pixmap pixmap{side, {}};
    pixmap.argb.reserve(static_cast<std::size_t>(side) * static_cast<std::size_t>(side) * 4);
    const double pixel = App::kLogoCanvas / side;
    for (int y = 0; y < side; ++y)
        for (int x = 0; x < side; ++x) {
            const double alpha = 255 * coverage({(x + 0.5) * pixel, (y + 0.5) * pixel}, pixel);
            pixmap.argb.insert(pixmap.argb.end(),
                               {static_cast<std::uint8_t>(std::lround(alpha)), kGrey, kGrey, kGrey});
        }
    return pixmap;
}

} // namespace Kest::StatusNotifier
