#include "tools/encoder_simulator/OutputFile.h"

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <vector>

namespace EncoderSimulator {

OutputFile::~OutputFile()
{
    if (file != nullptr)
        std::fclose(file);
}

std::optional<std::string> OutputFile::create(const std::string& path)
{
    const auto folder = std::filesystem::path(path).parent_path();
    std::error_code failure;
    if (!folder.empty())
        std::filesystem::create_directories(folder, failure);
    if (failure)
        return "cannot create the folder " + folder.string() + ": " + failure.message();
    file = std::fopen(path.c_str(), "we");
    if (file == nullptr)
        return "cannot create " + path + ": " + std::strerror(errno);
    return std::nullopt;
}

void OutputFile::grow()
{
    static const std::vector<char> block(65536, '\x5A');
    std::fwrite(block.data(), 1, block.size(), file);
    std::fflush(file);
}

} // namespace EncoderSimulator
