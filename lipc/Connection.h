// Declares the value for "no connection". The LIPC library provides this value, but the agent makes no
// connections and does not read it.
#pragma once

#include "lipc/ClientID.h"

#include <array>
#include <cstdint>

namespace LIPC {

/// The agent does not know the meaning of the fields. A default object differs from `mscNull`: the bytes of
/// its `map` are 0.
struct Connection {
    ClientID ids[3];
    std::uint8_t flag = 0;
    std::array<std::uint8_t, 256> map{};
    std::uint32_t word = 0;
    std::uint8_t endFlag = 0;

    /// Contains empty ids, zeros, and a map whose bytes are all 0xFF.
    static const Connection mscNull;
};

} // namespace LIPC
