// The host's word size: the contents of the segment "LIPC_VERSION".
#pragma once

#include <cstddef>
#include <cstdint>

namespace LIPC {

struct VersionBuffer {
    static constexpr std::size_t kSegmentBytes = 8;
    static constexpr std::int32_t kNotPublished = 0;      // the host has not written its word size yet
    static constexpr std::int32_t kAcceptedWordSize = 64; // a host with another word size is refused

    std::int32_t hostData; // used by the host only
    std::int32_t wordSize; // of the running host, in bits
};

static_assert(sizeof(VersionBuffer) == VersionBuffer::kSegmentBytes);
static_assert(offsetof(VersionBuffer, wordSize) == 4);

} // namespace LIPC
