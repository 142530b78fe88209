// The encoders' side of the pipe for the benchmarks.
#pragma once

#include <string>

namespace Kest::Bench {

/// The name that an encoding has in the menu.
std::string encodingName(int encoding);
/// Lines as the encoder with that number writes them; its process id is none that a system gives.
std::string nameLine(int encoding);
std::string progressLine(int encoding, int percentage);

struct Progress {
    int encoding = -1; // -1 for a text that is not of an encoding that reports its progress
    int percentage = 0;
};
/// What a row of the menu tells.
Progress progressIn(const std::string& label);

/// One writer's end of the agent's pipe.
class EncoderPipe {
public:
    /// Throws std::runtime_error when no agent has opened its end after ten seconds.
    EncoderPipe();
    ~EncoderPipe();
    EncoderPipe(const EncoderPipe&) = delete;
    EncoderPipe& operator=(const EncoderPipe&) = delete;

    /// Whole lines of at most 4096 bytes together; waits while the pipe is full. False when they cannot be
    /// written.
    bool write(const std::string& lines) const;

private:
    int descriptor = -1;
};

} // namespace Kest::Bench
