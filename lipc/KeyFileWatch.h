// Detects that the key file of a segment was removed while the segment still exists.
#pragma once

#include "lipc/ShmManaged.h"

namespace LIPC {

/// A client finds a segment by the key of its key file. If the key file is removed, the file that replaces it
/// has another key, so no client finds the segment any more. Not synchronised.
class KeyFileWatch {
public:
    /// Call with each new attachment to the segment; the name of the segment must always be the same. Returns
    /// true if `attachment` has another key and found no segment, although the segment of the last successful
    /// attachment still exists. Returns true only once for each removal of the key file.
    bool detectKeyFileLoss(const ShmManaged& attachment);

private:
    // Of the last successful attachment; `id` is -1 if there is none, or after the removal was reported.
    key_t key = -1;
    int id = -1;
};

} // namespace LIPC
