// Lines out of a stream of bytes that arrives in pieces of any size.
#pragma once

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>

namespace Kest::Text {

/// A line ends at a line feed, a carriage return or a NUL byte.
class LineSplitter {
public:
    // Writers of a pipe write lines of up to PIPE_BUF bytes whole; a longer one may be mixed with others'.
    static constexpr std::size_t kLongestLine = 4096;

    /// Calls `take` with each line that ends in these bytes, without its end; empty ones are left out. For
    /// one of more than 4096 bytes `drop` is called instead, once, with its first 4097. A line is valid
    /// during the call.
    template <typename Take, typename Drop>
    void feed(std::string_view bytes, Take&& take, Drop&& drop)
    {
        while (!bytes.empty()) {
            const auto* end = std::find_if(bytes.begin(), bytes.end(), [](char c) { return isLineEnd(c); });
            const auto piece = bytes.substr(0, static_cast<std::size_t>(end - bytes.begin()));
            if (end == bytes.end()) {
                keep(piece);
                return;
            }
            bytes.remove_prefix(piece.size() + 1);
            if (begun.size() + piece.size() > kLongestLine)
                drop(std::string_view(keep(piece)));
            else if (!begun.empty())
                take(std::string_view(begun.append(piece)));
            else if (!piece.empty())
                take(piece);
            begun.clear();
        }
    }

    /// Returns what has arrived of the line that has not ended yet, at most 4097 bytes of it.
    const std::string& unfinished() const { return begun; }

private:
    static bool isLineEnd(char c)
    {
        // All but a few bytes need one comparison.
        return static_cast<unsigned char>(c) <= '\r' && (c == '\n' || c == '\r' || c == '\0');
    }

    // One byte more than a line may have marks one that is too long, whatever follows.
    const std::string& keep(std::string_view piece)
    {
        return begun.append(piece.substr(0, kLongestLine + 1 - begun.size()));
    }

    std::string begun;
};

} // namespace Kest::Text
