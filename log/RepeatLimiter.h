// Limits repeated log lines.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

namespace Lct {

/// Decides which lines are written: one a minute of equal lines, 20 a minute of lines with the same format.
/// Not synchronised.
class RepeatLimiter {
public:
    static constexpr std::int64_t kPeriod = 60; // seconds
    static constexpr int kMaxLines = 20;        // of one format in a period

    /// Returns how many lines of this format were omitted since the last written one; nullopt if this one is
    /// omitted too. `format` is compared by its address; `now` is in seconds and never decreases.
    std::optional<unsigned> admit(const char* format, std::string_view message, std::int64_t now);

private:
    struct Message {
        std::size_t hash = 0;
        std::int64_t writtenAt = 0;
    };
    struct Format {
        const char* format = nullptr;
        std::array<Message, kMaxLines> messages{}; // the last written ones
        std::size_t next = 0;
        unsigned leftOut = 0;
    };
    static bool isDue(const Format& known, std::size_t hash, std::int64_t now);
    Format& find(const char* format);

    std::array<Format, 16> formats{};
    std::size_t nextFormat = 0;
};

} // namespace Lct
