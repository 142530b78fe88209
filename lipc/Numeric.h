// Converts parameters, which are 32-bit floats in shared memory.
#pragma once

#include <cmath>

namespace LIPC {

/// Returns the nearest integer; halves are rounded away from zero. Returns 0 for NaN and for values outside
/// the range of int.
inline int round(float value)
{
    // The bounds are the lowest and the highest float within the range of int.
    const bool fits = value >= -2147483648.0F && value <= 2147483520.0F;
    return fits ? static_cast<int>(std::lround(value)) : 0;
}

/// Returns the linear gain of a level in decibels; 0 for -144 dB and below, and for NaN.
inline float db2amplitude(float decibels)
{
    return decibels > -144.0F ? std::pow(10.0F, decibels / 20.0F) : 0.0F;
}

} // namespace LIPC
