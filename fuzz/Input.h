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
    Input(const std::uint8_t* data, std::size_t size) : left(reinterpret_cast<const char*>(data), size) {}

    bool isEmpty() const { return left.empty(); }
    std::uint8_t byte() { return static_cast<std::uint8_t>(isEmpty() ? 0 : text(1).front()); }
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
        std::string taken(left.substr(0, bytes));
        left.remove_prefix(taken.size());
        return taken;
    }
    std::string rest() { return text(left.size()); }

private:
    std::string_view left;
};

inline void require(bool holds, const char* file = __builtin_FILE(), int line = __builtin_LINE())
{
    if (holds)
        return;
    std::fprintf(stderr, "%s:%d: does not hold\n", file, line);
    std::abort();
}

} // namespace Kest::Fuzz
