// encoder-simulator: an offline encoder for demonstrations and tests. --help tells its options.
#include "tools/encoder_simulator/Encoding.h"

#include <csignal>

int main(int argc, char** argv)
{
    int exitStatus = 0;
    const auto options = EncoderSimulator::parseOptions(argc, argv, exitStatus);
    if (!options)
        return exitStatus;
    // A reader that goes away ends no encoding.
    std::signal(SIGPIPE, SIG_IGN);
    return EncoderSimulator::encode(*options);
}
