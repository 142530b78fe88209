// The host's registry of clients, the contents of the segment "LIPC_SESSION".
#pragma once

#include "lipc/ClientEntry.h"

#include <deque>

namespace LIPC {

/// Always looked at in place. The host and other clients write it at any time, without a lock.
struct SessionBuffer {
    static constexpr int kSlots = 1024;
    /// Up to the end of `defaultBus`; a smaller segment is none of the host's.
    static constexpr std::size_t kSegmentBytes = 3458217;

    /// The record in the lowest slot whose id equals `name` in its first 64 characters; null when there is
    /// none. The result points into the segment: what is written through it goes to the host.
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
