// Plays the files of a folder through a target once, with any compiler.
#include "fuzz/Input.h"
#include "tests/support/TemporaryFolder.h"

int main(int, char** argv)
{
    for (const auto& entry : std::filesystem::directory_iterator(argv[1])) {
        std::fprintf(stderr, "%s\n", entry.path().c_str());
        const auto text = Kest::Test::readFile(entry.path());
        LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(text.data()), text.size());
    }
    return std::filesystem::is_empty(argv[1]) ? 1 : 0;
}
