// Splits a stream of bytes, which arrives in pieces of any size, into lines.
#pragma once

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>

namespace Kest::Text {

/// A line ends at a line feed, a carriage return or a NUL byte. Not synchronised.
class LineSplitter {
public:
    // Equals PIPE_BUF on Linux. A pipe may mix a longer write with the writes of other processes.
    static constexpr std::size_t kMaxLineBytes = 4096;

    /// Adds `bytes` to the stream. Calls `take` with each line that is now complete, without its line end.
    /// Skips empty lines. If a complete line has more than 4096 bytes, calls `drop` instead, with the first
    /// 4097 bytes of the line. The argument of `take` and `drop` is valid during the call only.
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
            if (begun.size() + piece.size() > kMaxLineBytes)
                drop(std::string_view(keep(piece)));
            else if (!begun.empty())
                take(std::string_view(begun.append(piece)));
            else if (!piece.empty())
                take(piece);
            begun.clear();
        }
    }

    /// Returns the beginning of the line that has not ended yet, at most 4097 bytes; empty if there is none.
    const std::string& unfinished() const { return begun; }

private:
    static bool isLineEnd(char c)
    {
        // One comparison is enough for almost every byte.
        return static_cast<unsigned char>(c) <= '\r' && (c == '\n' || c == '\r' || c == '\0');
    }

    // Keeps one byte more than the maximum, which shows that the line is too long.
    const std::string& keep(std::string_view piece)
    {
        return begun.append(piece.substr(0, kMaxLineBytes + 1 - begun.size()));
    }

    std::string begun;
};

} // namespace Kest::Text
