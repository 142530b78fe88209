// One encoding, from its first line to its last.
#pragma once

#include "tools/encoder_simulator/Options.h"

namespace EncoderSimulator {

/// Encodes as the options say and reports it about this process. Takes `options.seconds`, or less when it is
/// to fail or to fall silent. Returns the exit status: 0, or 1 when it failed, with one line on standard
/// error unless it was to fail.
int encode(const Options& options);

} // namespace EncoderSimulator
