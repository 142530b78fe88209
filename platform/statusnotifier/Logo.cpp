#include "platform/statusnotifier/Logo.h"

#include <algorithm>
#include <cmath>

namespace Kest::StatusNotifier {
namespace {

struct Point {
    double x;
    double y;
};

struct Stroke {
    Point from;
    Point to;
};

// In a square of 16 by 16: a K whose arms reach for a source of sound.
constexpr Stroke kStrokes[] = {
    {{4, 2.5}, {4, 13.5}},
    {{4, 8.75}, {10, 2.5}},
    {{6.25, 6.5}, {11, 13.5}},
    {{13, 8}, {13, 8}},
};
constexpr double kCanvas = 16;
constexpr double kHalfWidth = 1.1;
constexpr std::uint8_t kGrey = 0x9A;

double distance(Point p, const Stroke& stroke)
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
    double nearest = kCanvas;
    for (const auto& stroke : kStrokes)
        nearest = std::min(nearest, distance(p, stroke));
    return std::clamp((kHalfWidth - nearest) / pixel + 0.5, 0.0, 1.0);
}

} // namespace

Pixmap drawLogo(int side)
{
    Pixmap pixmap{side, {}};
    pixmap.argb.reserve(static_cast<std::size_t>(side) * static_cast<std::size_t>(side) * 4);
    const double pixel = kCanvas / side;
    for (int y = 0; y < side; ++y)
        for (int x = 0; x < side; ++x) {
            const double alpha = 255 * coverage({(x + 0.5) * pixel, (y + 0.5) * pixel}, pixel);
            pixmap.argb.insert(pixmap.argb.end(),
                               {static_cast<std::uint8_t>(std::lround(alpha)), kGrey, kGrey, kGrey});
        }
    return pixmap;
}

} // namespace Kest::StatusNotifier
