#include "lipc/Numeric.h"

#include <cmath>

namespace LIPC {

int round(float value)
{
    // The bounds are the floats next to the ends of the int range; beyond them lround has no defined result.
    const bool fits = value >= -2147483648.0F && value <= 2147483520.0F;
    return fits ? static_cast<int>(std::lround(value)) : 0;
}

float db2amplitude(float decibels) { return decibels > -144.0F ? std::pow(10.0F, decibels / 20.0F) : 0.0F; }

} // namespace LIPC
