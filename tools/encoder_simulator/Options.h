// The command line of encoder-simulator.
#pragma once

#include <optional>
#include <string>

namespace EncoderSimulator {

struct Options {
    std::string output; // absolute
    std::string type = "Main";
    std::string fifo = "/tmp/kest_settings_enc_progress_fifo";
    double seconds = 10; // from 0 to 100 per cent
    int steps = 20;      // progress lines after that of 0 per cent
    std::optional<int> failAt;
    std::optional<int> silentAt;
    bool compact = false;
};

/// Returns what the program is to do; nullopt when it is to end with `exitStatus`, see CommandLine::parse.
std::optional<Options> parseOptions(int argc, char** argv, int& exitStatus);

} // namespace EncoderSimulator
