// The host's registry of clients, the contents of the segment "LIPC_SESSION".
#pragma once

#include "lipc/ClientEntry.h"

#include <deque>

namespace LIPC {

/// Read in shared memory, never copied whole. The host and other clients write it at any time, without a
/// lock.
struct SessionBuffer {
    static constexpr int kSlots = 1024;
    /// The size up to the end of `defaultBus`; smaller segments are rejected.
    static constexpr std::size_t kSegmentBytes = 3458217;

    /// Returns the record in the lowest slot whose id equals `name` in its first 64 characters; null if there
    /// is none. The result points into the segment: the host reads what is written through it.
    ClientEntry* getClientEntry(const char* name);

    /// Replaces `out` by copies of all records of a type, in slot order, and returns their number.
    int getClientEntries(int type, std::deque<ClientEntry>& out) const;

    unsigned char header[1120] = {}; // the host's own
    ClientEntry clients[kSlots];
    unsigned char reserved[8] = {}; // the host's own
    ClientID defaultBus;            // the id of the bus client that is the default bus
};

static_assert(offsetof(SessionBuffer, clients) == 1120);
static_assert(offsetof(SessionBuffer, reserved) == 3458144);
static_assert(offsetof(SessionBuffer, defaultBus) == 3458152);
static_assert(SessionBuffer::kSegmentBytes == offsetof(SessionBuffer, defaultBus) + sizeof(ClientID));

} // namespace LIPC
