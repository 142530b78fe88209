// The command line of encoder-simulator.
#pragma once

#include "tables/Settings.h"

#include <optional>
#include <string>

namespace EncoderSimulator {

struct Options {
    std::string output;        // the absolute path of the output file
    std::string type = "Main"; // the type of the encoding
    std::string fifo = Kest::Settings::kEncodingProgressFifo;
    double seconds = 10;         // the duration of the encoding
    int steps = 20;              // the number of progress lines after the one with 0 per cent
    std::optional<int> failAt;   // the percentage after which the encoding fails
    std::optional<int> silentAt; // the last percentage that is reported
    bool compact = false;        // omit the blanks in the progress lines
};

/// Returns the parsed options; nullopt if the program must exit: `exitStatus` is then its exit status.
std::optional<Options> parseOptions(int argc, char** argv, int& exitStatus);

} // namespace EncoderSimulator
