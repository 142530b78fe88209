// The lines in which encoders report, one at a time.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <variant>

namespace Kest::Settings {

struct ProgressLine {
    std::int32_t percentage; // 0 or more, not clamped
};
struct PathLine {
    std::string_view path; // not empty
};
struct TypeLine {
    std::string_view word; // not empty, no white space
};
struct ErrorLine {};

/// A path or word of 1024 bytes or more. Cut, it would name another folder, so the line is refused; after a
/// refused path the encoding has none.
struct OverlongValue {
    bool isPath;
};

struct EncodingLine {
    std::int32_t pid;
    std::variant<ProgressLine, PathLine, TypeLine, ErrorLine, OverlongValue> content;
};

/// Reads a line without its end. The forms, tried in this order, with any run of white space (or none) where
/// a blank stands:
///     pid: 4711 , P: 37
///     pid: 4711 , path: /Volumes/Out/Film/Film.wav
///     pid: 4711 , enc_type: Main
///     pid: 4711 , ERROR:
/// A line that begins with "pid:" and a number and has none of the first three forms is an error line,
/// whatever follows. Any other line is nothing. A number that does not fit 32 bits does not count as one. The
/// result points into `line`.
std::optional<EncodingLine> parseEncodingLine(std::string_view line);

} // namespace Kest::Settings
