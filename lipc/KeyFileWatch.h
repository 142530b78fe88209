// Detects that the key file of a segment was removed while the segment still exists.
#pragma once

#include "lipc/ShmManaged.h"

namespace LIPC {

/// A client finds a segment by a key, which it derives from the key file. If the key file is removed, a new
/// key file usually yields another key, so no client finds the segment any more. Not synchronised.
class KeyFileWatch {
public:
    /// Call this with each new attachment; all must have the same segment name. Returns true if all of these
    /// conditions are met: `attachment` has failed (its `address` is null); its key is valid but differs from
    /// the key of the last successful attachment; the segment of that attachment still exists. After it has
    /// returned true, returns false until an attachment succeeds again.
    bool detectKeyFileLoss(const ShmManaged& attachment);

private:
    // The last successful attachment. `id` is -1 if there is none, or if a later attachment failed with
    // another key.
    key_t key = -1;
    int id = -1;
};

} // namespace LIPC
