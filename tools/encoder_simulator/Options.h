// The command line of encoder-simulator.
#pragma once

#include "tables/Settings.h"

#include <optional>
#include <string>

namespace EncoderSimulator {

struct Options {
    std::string output; // absolute
    std::string type = "Main";
    std::string fifo = Kest::Settings::kEncodingProgressFifo;
    double seconds = 10; // from 0 to 100 per cent
    int steps = 20;      // progress lines after that of 0 per cent
    std::optional<int> failAt;
    std::optional<int> silentAt;
    bool compact = false;
};

/// Returns the parsed options; nullopt if the program is to exit with `exitStatus`, see CommandLine::parse.
std::optional<Options> parseOptions(int argc, char** argv, int& exitStatus);

} // namespace EncoderSimulator
