#include "tools/encoder_simulator/Encoding.h"

#include "tools/encoder_simulator/OutputFile.h"
#include "tools/encoder_simulator/ProgressLines.h"
#include "tools/encoder_simulator/ProgressPipe.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <thread>
#include <unistd.h>

namespace EncoderSimulator {
namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::milliseconds kLookForReaderEvery{50};
constexpr std::chrono::seconds kSlowReaderGets{2};

void sleepUntil(Clock::time_point end, ProgressPipe& pipe)
{
    for (auto now = Clock::now(); now < end; now = Clock::now()) {
        std::this_thread::sleep_for(std::min<Clock::duration>(end - now, kLookForReaderEvery));
        pipe.pump();
    }
}

// The last lines are not lost because a pipe is full just now.
void deliver(ProgressPipe& pipe)
{
    const auto end = Clock::now() + kSlowReaderGets;
    while (pipe.isBehind() && Clock::now() < end)
        sleepUntil(Clock::now() + std::chrono::milliseconds(1), pipe);
}

} // namespace

int encode(const Options& options)
{
    OutputFile output;
    if (const auto failure = output.create(options.output)) {
        std::fprintf(stderr, "encoder-simulator: %s\n", failure->c_str());
        return 1;
    }
    const ProgressLines lines(getpid(), options.compact);
    ProgressPipe pipe(options.fifo);
    pipe.setIntroduction({lines.path(options.output), lines.type(options.type)});

    const int last = std::min(options.failAt.value_or(100), options.silentAt.value_or(100));
    const auto start = Clock::now();
    for (int step = 0, percent = -1; percent < last; ++step) {
        const std::chrono::duration<double> passed(options.seconds * step / options.steps);
        sleepUntil(start + std::chrono::duration_cast<Clock::duration>(passed), pipe);
        percent = std::min(step * 100 / options.steps, last);
        pipe.send(lines.progress(percent));
        output.grow();
    }
    if (options.failAt)
        pipe.send(lines.error("encoding failed"));
    deliver(pipe);
    return options.failAt ? 1 : 0;
}

} // namespace EncoderSimulator
