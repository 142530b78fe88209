// Whether the marker file of a segment was removed while the segment still exists.
#pragma once

#include "lipc/ShmManaged.h"

namespace LIPC {

/// Without its marker file a segment cannot be found any more: the file that replaces it has another key.
/// Not synchronised.
class MarkerWatch {
public:
    /// Checks an attachment to the same name as all before. Returns true once for each removal: the key is
    /// another one and has no segment, and the segment of the last successful attachment still exists.
    bool isMarkerLost(const ShmManaged& attachment);

private:
    key_t key = -1; // of the last successful attachment
    int id = -1;
};

} // namespace LIPC
