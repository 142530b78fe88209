// The file that an encoder writes: it grows while the encoding goes on.
#pragma once

#include <cstdio>
#include <optional>
#include <string>

namespace EncoderSimulator {

class OutputFile {
public:
    OutputFile() = default;
    ~OutputFile();
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    /// Makes the folders on the way and the file, empty. Returns what went wrong in one line.
    std::optional<std::string> create(const std::string& path);
    /// Appends a block of 64 KiB. A full disk or a removed folder does not stop the encoding.
    void grow();

private:
    std::FILE* file = nullptr;
};

} // namespace EncoderSimulator
