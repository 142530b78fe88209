#include "log/RepeatLimiter.h"

#include <algorithm>
#include <functional>
#include <utility>

namespace Lct {

std::optional<unsigned> RepeatLimiter::admit(const char* format, std::string_view message, std::int64_t now)
{
    auto& known = find(format);
    const auto hash = std::hash<std::string_view>()(message);
    if (!isDue(known, hash, now)) {
        ++known.omitted;
        return std::nullopt;
    }
    known.messages[known.next] = {hash, now + 1}; // 0 is "never"
    known.next = (known.next + 1) % known.messages.size();
    return std::exchange(known.omitted, 0);
}

// `next` is the index of the oldest message, which the next one replaces.
bool RepeatLimiter::isDue(const Format& known, std::size_t hash, std::int64_t now)
{
    const auto isRecent = [now](const Message& message) {
        return message.writtenAt != 0 && now + 1 - message.writtenAt < kPeriod;
    };
    return !isRecent(known.messages[known.next]) &&
           std::ranges::none_of(known.messages, [&](const Message& message) {
               return message.hash == hash && isRecent(message);
           });
}

RepeatLimiter::Format& RepeatLimiter::find(const char* format)
{
    for (auto& known : formats)
        if (known.format == format)
            return known;
    auto& oldest = formats[nextFormat];
    nextFormat = (nextFormat + 1) % formats.size();
    oldest = Format{.format = format};
    return oldest;
}

} // namespace Lct
