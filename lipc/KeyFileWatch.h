// Detects that the key file of a segment was removed while the segment still exists.
#pragma once

#include "lipc/ShmManaged.h"

namespace LIPC {

/// A client finds a segment by a key, which it derives from the key file. If the key file is removed, the
/// next key file has another key, so no client finds the segment any more. Not synchronised.
class KeyFileWatch {
public:
    /// Pass each new attachment to this function; all attachments must have the same segment name. Returns
    /// true if `attachment` has failed, its key differs from the key of the last successful attachment, and
    /// the segment of the last successful attachment still exists. Returns true only once for each removal of
    /// the key file.
    bool detectKeyFileLoss(const ShmManaged& attachment);

private:
    // The last successful attachment. `id` is -1 if there is none, or if a later one failed with another key.
    key_t key = -1;
    int id = -1;
};

} // namespace LIPC
