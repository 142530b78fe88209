// Parses one line that an encoder has written.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <variant>

namespace Kest::Settings {

struct ProgressLine {
    std::int32_t percentage; // not negative; may exceed 100
};
struct PathLine {
    std::string_view path; // not empty
};
struct TypeLine {
    std::string_view word; // not empty, no white space
};
struct ErrorLine {};

/// Replaces a `PathLine` or `TypeLine` whose text has 1024 bytes or more. The text is dropped, because a path
/// that was cut would be the path of another file.
struct OverlongValue {
    bool isPath; // false: a type
};

struct EncodingLine {
    std::int32_t pid;
    std::variant<ProgressLine, PathLine, TypeLine, ErrorLine, OverlongValue> content;
};

/// Parses a line, which must not contain its line end. Recognises these forms, in which each blank means any
/// amount of white space, or none:
///     pid: 4711 , P: 37
///     pid: 4711 , path: /Volumes/Out/Film/Film.wav
///     pid: 4711 , enc_type: Main
///     pid: 4711 , ERROR:
/// For the encoder with the process id 4711, these lines report the percentage, the path of the output file
/// (up to the end of the line), the type of the encoding, or an error. Text after the percentage and text
/// after the first white space in the type are ignored. Returns nullopt if the line does not begin with
/// "pid:" and a number that fits in 32 bits. Any other line gives an `ErrorLine`, for example if its
/// percentage is negative or does not fit in 32 bits. The result points into `line`.
std::optional<EncodingLine> parseEncodingLine(std::string_view line);

} // namespace Kest::Settings
