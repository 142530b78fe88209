// Parses one line of an encoder.
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

/// A path or word of 1024 bytes or more. The line is refused, as a cut path would name another folder; the
/// encoding then has no path.
struct OverlongValue {
    bool isPath;
};

struct EncodingLine {
    std::int32_t pid;
    std::variant<ProgressLine, PathLine, TypeLine, ErrorLine, OverlongValue> content;
};

/// Parses a line without its line end. It tries these forms in this order; a blank matches any white space or
/// none:
///     pid: 4711 , P: 37
///     pid: 4711 , path: /Volumes/Out/Film/Film.wav
///     pid: 4711 , enc_type: Main
///     pid: 4711 , ERROR:
/// Any other line that begins with "pid:" and a number is an error line. Returns nullopt for all other lines.
/// A number must fit 32 bits. The result points into `line`.
std::optional<EncodingLine> parseEncodingLine(std::string_view line);

} // namespace Kest::Settings
