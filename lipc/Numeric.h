// How values travel through shared memory: as 32-bit floats.
#pragma once

namespace LIPC {

/// The nearest integer; halves go away from zero. A value that no int can hold (NaN included) gives 0.
int round(float value);

/// The linear gain of a level in decibels; 0 at -144 dB and below, and for NaN.
float db2amplitude(float decibels);

} // namespace LIPC
