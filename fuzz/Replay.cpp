// Plays the files of a folder through a target once, with any compiler.
#include "fuzz/Input.h"

#include <filesystem>
#include <fstream>
#include <sstream>

int main(int, char** argv)
{
    int played = 0;
    for (const auto& entry : std::filesystem::directory_iterator(argv[1])) {
        std::ostringstream bytes;
        bytes << std::ifstream(entry.path(), std::ios::binary).rdbuf();
        std::fprintf(stderr, "%s\n", entry.path().c_str());
        const auto text = bytes.str();
        LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(text.data()), text.size());
        ++played;
    }
    return played > 0 ? 0 : 1;
}
