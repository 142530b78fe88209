// Limits the number of similar log lines.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

namespace Lct {

/// Decides which log lines are written. A format is a format string of `printf`, compared by address. Within
/// any 60 seconds, admits at most 20 lines of one format, and only one of several equal lines of one format.
/// Remembers 16 formats; a further format replaces the one that was added first. Not synchronised.
class RepeatLimiter {
public:
    static constexpr std::int64_t kPeriod = 60; // seconds
    static constexpr int kMaxLines = 20;        // for each format in `kPeriod`

    /// Returns nullopt if the line `message` must be omitted. Otherwise returns how many lines of `format`
    /// were omitted since the last written line of `format`. `now` is a time in seconds that never decreases.
    std::optional<unsigned> admit(const char* format, std::string_view message, std::int64_t now);

private:
    struct Message {
        std::size_t hash = 0;
        std::int64_t writtenAt = 0; // `now` plus 1; 0 if there is no message
    };
    struct Format {
        const char* format = nullptr;
        std::array<Message, kMaxLines> messages{}; // the last messages written, a ring
        std::size_t next = 0;                      // index of the oldest message
        unsigned omitted = 0;
    };
    static bool isDue(const Format& known, std::size_t hash, std::int64_t now);
    Format& find(const char* format);

    std::array<Format, 16> formats{};
    std::size_t nextFormat = 0;
};

} // namespace Lct
