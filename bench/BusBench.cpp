// bus_bench lines|host SECONDS AGENT...      bus_bench choice|control|history COUNT AGENT...
// The modes are told in BusBench.h.
#include "bench/BusBench.h"

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <map>

int main(int argc, char** argv)
{
    using namespace Kest::Bench;
    const std::map<std::string, int (*)(int, const Command&)> modes{{"lines", lineToSignal},
                                                                    {"host", hostToSignal},
                                                                    {"choice", choiceToHost},
                                                                    {"control", controlSocket},
                                                                    {"history", longHistory}};
    const Command words(argv + 1, argv + argc);
    if (words.size() < 3 || !modes.contains(words[0]))
        return 2;
    const int number = static_cast<int>(std::strtol(words[1].c_str(), nullptr, 10));
    try {
        return modes.at(words[0])(number, {words.begin() + 2, words.end()});
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "bus_bench %s: %s\n", words[0].c_str(), failure.what());
        return 1;
    }
}
