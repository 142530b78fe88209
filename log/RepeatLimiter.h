// Keeps a fault that repeats from filling the log.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

namespace Lct {

/// Decides which lines are written: of equal ones, one a minute; of those with one format, 20 a minute. Not
/// for several threads at once.
class RepeatLimiter {
public:
    static constexpr std::int64_t kPeriod = 60; // seconds
    static constexpr int kMaxLines = 20;        // of one format in a period

    /// Returns how many lines of this format were left out since the last one that was written; nullopt when
    /// this one is left out too. `format` is compared by its address, `now` is in seconds and never
    /// decreases.
    std::optional<unsigned> admit(const char* format, std::string_view message, std::int64_t now);

private:
    struct Message {
        std::size_t hash = 0;
        std::int64_t writtenAt = 0;
    };
    struct Format {
        const char* format = nullptr;
        std::array<Message, kMaxLines> messages{}; // the last ones that were written
        std::size_t next = 0;
        unsigned leftOut = 0;
    };
    static bool isDue(const Format& known, std::size_t hash, std::int64_t now);
    Format& find(const char* format);

    std::array<Format, 16> formats{};
    std::size_t nextFormat = 0;
};

} // namespace Lct
