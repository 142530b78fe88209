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

/// What the program is to do, or nothing when all is said already: then `exitStatus` is 0 after --help, and 2
/// after a wrong command line, which was answered with one line on standard error.
std::optional<Options> parseOptions(int argc, char** argv, int& exitStatus);

} // namespace EncoderSimulator
