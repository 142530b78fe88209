// The library's null connection value.
#pragma once

#include "lipc/ClientID.h"

#include <array>
#include <cstdint>

namespace LIPC {

struct Connection {
    ClientID ids[3];
    std::uint8_t flag = 0;
    std::array<std::uint8_t, 256> map{};
    std::uint32_t word = 0;
    std::uint8_t endFlag = 0;

    /// The value for "no connection": empty ids, zeros, and a map of 0xFF. The agent makes no connections.
    static const Connection mscNull;
};

} // namespace LIPC
