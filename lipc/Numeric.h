// How values travel through shared memory: as 32-bit floats.
#pragma once

#include <cmath>

namespace LIPC {

/// The nearest integer; halves go away from zero. A value that no int can hold (NaN included) gives 0.
inline int round(float value)
{
    // The bounds are the floats next to the ends of the int range; beyond them lround has no defined result.
    const bool fits = value >= -2147483648.0F && value <= 2147483520.0F;
    return fits ? static_cast<int>(std::lround(value)) : 0;
}

/// The linear gain of a level in decibels; 0 at -144 dB and below, and for NaN.
inline float db2amplitude(float decibels)
{
    return decibels > -144.0F ? std::pow(10.0F, decibels / 20.0F) : 0.0F;
}

} // namespace LIPC
