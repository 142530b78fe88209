// `Connection::mscNull`, the value for "no connection". It is a part of the LIPC library's interface, but the
// agent does not use it.
#pragma once

#include "lipc/ClientID.h"

#include <array>
#include <cstdint>

namespace LIPC {

/// The meaning of the fields is not known. A default-constructed object is not equal to `mscNull`: the bytes
/// of its `map` are 0.
struct Connection {
    ClientID ids[3];
    std::uint8_t flag = 0;
    std::array<std::uint8_t, 256> map{};
    std::uint32_t word = 0;
    std::uint8_t endFlag = 0;

    /// Its ids are empty, the bytes of its `map` are 0xFF, and its other fields are 0.
    static const Connection mscNull;
};

} // namespace LIPC
