// The host's registry of clients: the contents of the segment "LIPC_SESSION".
#pragma once

#include "lipc/ClientEntry.h"

#include <deque>

namespace LIPC {

/// Used in shared memory, never copied whole. The host and its clients write it at any time, without a lock.
struct SessionBuffer {
    static constexpr int kSlots = 1024;
    /// The number of bytes up to the end of `defaultBus`. The agent refuses a smaller segment.
    static constexpr std::size_t kSegmentBytes = 3458217;

    /// Returns the first record whose id equals `name`; null if there is none. Only the first 64 characters
    /// of `name` count. Does not check the record's type, so the record may be free. The record is not a
    /// copy: the host reads what the caller writes into it.
    ClientEntry* getClientEntry(const char* name);

    /// Replaces the content of `out` by copies of all records of a type, in the order of `clients`. Returns
    /// their number, 0 to 1024.
    int getClientEntries(int type, std::deque<ClientEntry>& out) const;

    unsigned char header[1120] = {}; // used by the host only
    ClientEntry clients[kSlots];
    unsigned char reserved[8] = {}; // used by the host only
    ClientID defaultBus;            // the id of the default bus; empty if there is none
};

static_assert(offsetof(SessionBuffer, clients) == 1120);
static_assert(offsetof(SessionBuffer, reserved) == 3458144);
static_assert(offsetof(SessionBuffer, defaultBus) == 3458152);
static_assert(SessionBuffer::kSegmentBytes == offsetof(SessionBuffer, defaultBus) + sizeof(ClientID));

} // namespace LIPC
