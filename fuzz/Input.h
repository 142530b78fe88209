// What a fuzz target reads its input with, and how it says that something does not hold.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace Kest::Fuzz {

/// Never ends: what is read behind the last byte is 0.
class Input {
public:
    Input(const std::uint8_t* data, std::size_t size) : next(data), end(data + size) {}

    bool isEmpty() const { return next == end; }
    std::uint8_t byte() { return isEmpty() ? std::uint8_t{0} : *next++; }
    /// 0 to `limit` - 1.
    int below(int limit) { return byte() % limit; }
    std::int32_t number()
    {
        std::uint32_t value = 0;
        for (int i = 0; i < 4; ++i)
            value = value << 8 | byte();
        return static_cast<std::int32_t>(value);
    }
    /// At most so many bytes, fewer at the end.
    std::string text(std::size_t bytes)
    {
        const auto left = static_cast<std::size_t>(end - next);
        const auto* begin = reinterpret_cast<const char*>(next);
        next += bytes < left ? bytes : left;
        return {begin, reinterpret_cast<const char*>(next)};
    }
    std::string rest() { return text(SIZE_MAX); }

private:
    const std::uint8_t* next;
    const std::uint8_t* end;
};

inline void require(bool holds, const char* what)
{
    if (holds)
        return;
    std::fprintf(stderr, "does not hold: %s\n", what);
    std::abort();
}

} // namespace Kest::Fuzz
