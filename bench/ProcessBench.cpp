// Figures of whole programs with an item in the tray. Each line that is printed is a name and a number.
//
//   process_bench start REPEATS PROGRAM...
//       the median of the milliseconds from its start to its registration
//   process_bench memory SECONDS PROGRAM...
//       its memory in MB, so long after its start
//   process_bench idle SECONDS PROGRAM...
//       its CPU milliseconds and wake-ups in that time, after two seconds
#include "bench/ProcessFigures.h"
#include "bench/Watcher.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <string>
#include <thread>
#include <vector>

namespace Kest::Bench {
namespace {

using Command = std::vector<std::string>;

constexpr auto kSettling = std::chrono::seconds(2);

// Answers a program's calls while time passes.
void wait(const Watcher& watcher, std::chrono::seconds time)
{
    watcher.waitFor([] { return false; }, time);
}

int start(int repeats, const Command& command)
{
    Watcher watcher;
    std::vector<double> times;
    for (int i = 0; i < repeats; ++i) {
        times.push_back(watcher.start(command));
        watcher.end();
    }
    std::ranges::sort(times);
    if (times.front() < 0)
        return 1;
    std::printf("start_ms %.2f\n", times[times.size() / 2]);
    return 0;
}

int memory(int seconds, const Command& command)
{
    Watcher watcher;
    if (watcher.start(command) < 0)
        return 1;
    wait(watcher, std::chrono::seconds(seconds));
    const auto used = memoryOf(watcher.pid());
    std::printf("uss_mb %.2f\npss_less_segment_mb %.2f\n", used.privateMb,
                used.proportionalMb - used.segmentMb);
    return 0;
}

int idle(int seconds, const Command& command)
{
    Watcher watcher;
    watcher.start(command); // one that has no item is idle as well
    wait(watcher, kSettling);
    const auto before = activityOf(watcher.pid());
    std::this_thread::sleep_for(std::chrono::seconds(seconds));
    const auto after = activityOf(watcher.pid());
    std::printf("cpu_ms %.1f\nwake_ups %.0f\n", after.cpuMs - before.cpuMs, after.wakeUps - before.wakeUps);
    return 0;
}

int run(const Command& words)
{
    if (words.size() < 3)
        return 2;
    const int number = static_cast<int>(std::strtol(words[1].c_str(), nullptr, 10));
    const Command command(words.begin() + 2, words.end());
    if (words[0] == "start")
        return start(number, command);
    if (words[0] == "memory")
        return memory(number, command);
    return words[0] == "idle" ? idle(number, command) : 2;
}

} // namespace
} // namespace Kest::Bench

int main(int argc, char** argv)
{
    try {
        return Kest::Bench::run({argv + 1, argv + argc});
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "process_bench: %s\n", failure.what());
        return 1;
    }
}
