// encoder-simulator: simulates an offline encoder, for demonstrations and tests. --help lists its options.
#include "tools/encoder_simulator/Options.h"
#include "tools/encoder_simulator/ProgressPipeWriter.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <thread>
#include <unistd.h>

using namespace EncoderSimulator;

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::milliseconds kReaderRetryInterval{50};
constexpr std::chrono::seconds kSlowReaderTimeout{2};
constexpr std::size_t kOutputBlockBytes = 65536; // bytes added to the output with each progress line

/// Creates the parent folders and the empty file. Returns false after a failure, with one line on standard
/// error.
bool create(std::ofstream& output, const std::string& path)
{
    const auto folder = std::filesystem::path(path).parent_path();
    std::error_code failure;
    std::filesystem::create_directories(folder, failure);
    if (failure) {
        std::fprintf(stderr, "encoder-simulator: cannot create the folder %s: %s\n", folder.c_str(),
                     failure.message().c_str());
        return false;
    }
    output.open(path, std::ios::binary);
    if (!output)
        std::fprintf(stderr, "encoder-simulator: cannot create %s: %s\n", path.c_str(), std::strerror(errno));
    return output.is_open();
}

/// Returns a line about this process; `isCompact` omits all blanks between its parts.
std::string line(bool isCompact, const char* key, const std::string& value)
{
    const std::string blank = isCompact ? "" : " ";
    return "pid:" + blank + std::to_string(getpid()) + blank + "," + blank + key + blank + value + "\n";
}

void sleepUntil(Clock::time_point end, ProgressPipeWriter& pipe)
{
    for (auto now = Clock::now(); now < end; now = Clock::now()) {
        std::this_thread::sleep_for(std::min<Clock::duration>(end - now, kReaderRetryInterval));
        pipe.pump();
    }
}

// Waits for a slow reader of a full pipe, so that the last lines are not lost.
void deliver(ProgressPipeWriter& pipe)
{
    const auto end = Clock::now() + kSlowReaderTimeout;
    while (pipe.hasUnsentLines() && Clock::now() < end)
        sleepUntil(Clock::now() + std::chrono::milliseconds(1), pipe);
}

/// Reports one encoding, for `options.seconds` or until the requested failure or silence. Returns the exit
/// status.
int encode(const Options& options)
{
    std::ofstream output;
    if (!create(output, options.output))
        return 1;
    ProgressPipeWriter pipe(options.fifo);
    pipe.setIntroduction(
        {line(options.compact, "path:", options.output), line(options.compact, "enc_type:", options.type)});

    const int last = std::min(options.failAt.value_or(100), options.silentAt.value_or(100));
    const auto start = Clock::now();
    for (int step = 0, percent = -1; percent < last; ++step) {
        const std::chrono::duration<double> passed(options.seconds * step / options.steps);
        sleepUntil(start + std::chrono::duration_cast<Clock::duration>(passed), pipe);
        percent = std::min(step * 100 / options.steps, last);
        pipe.send(line(options.compact, "P:", std::to_string(percent)));
        output.clear(); // a full disk does not end the encoding
        output << std::string(kOutputBlockBytes, '\x5A') << std::flush;
    }
    if (options.failAt)
        pipe.send(line(options.compact, "ERROR:", "encoding failed"));
    deliver(pipe);
    return options.failAt ? 1 : 0;
}

} // namespace

int main(int argc, char** argv)
{
    int exitStatus = 0;
    const auto options = parseOptions(argc, argv, exitStatus);
    if (!options)
        return exitStatus;
    // A reader that closes the pipe must not end the encoding.
    std::signal(SIGPIPE, SIG_IGN);
    return encode(*options);
}
