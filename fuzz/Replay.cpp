// Plays the files of a folder through a target once, with any compiler.
#include "fuzz/Input.h"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

int main(int argc, char** argv)
{
    int played = 0;
    for (int i = 1; i < argc; ++i)
        for (const auto& entry : std::filesystem::directory_iterator(argv[i])) {
            std::ifstream file(entry.path(), std::ios::binary);
            const std::vector<char> bytes(std::istreambuf_iterator<char>(file), {});
            std::fprintf(stderr, "%s\n", entry.path().c_str());
            LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
            ++played;
        }
    std::printf("%d inputs\n", played);
    return played > 0 ? 0 : 1;
}
