// Detects that the key file of a segment was removed while the segment still exists.
#pragma once

#include "lipc/ShmManaged.h"

namespace LIPC {

/// A segment without its key file cannot be found: the file that replaces it has another key. Not
/// synchronised.
class KeyFileWatch {
public:
    /// Checks one of a sequence of attachments to the same name. Returns true once for each removal: the key
    /// has changed and has no segment, and the segment of the last successful attachment still exists.
    bool isKeyFileLost(const ShmManaged& attachment);

private:
    key_t key = -1; // of the last successful attachment
    int id = -1;
};

} // namespace LIPC
