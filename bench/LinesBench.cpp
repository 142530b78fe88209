// Encoders' lines on their way through the pipe: the Backend beside the least that reads them at all, and
// beside the plain way of reading them, a sscanf for each form of line.
#include "backend/Backend.h"

#include <array>
#include <benchmark/benchmark.h>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <functional>
#include <map>
#include <string>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

namespace {

constexpr int kEncoders = 8;
constexpr int kRounds = 2500;
constexpr int kLastPid = 999999;                  // its line is the last one of all
constexpr char kFifo[] = "/tmp/lines_bench_fifo"; // in private namespaces

std::string makeLines()
{
    std::string lines;
    for (int encoder = 0; encoder < kEncoders; ++encoder)
        lines += "pid: " + std::to_string(70000 + encoder) + " , path: /Volumes/Out/Film_" +
                 std::to_string(encoder) + "/Film_Mix_Print.wav\n";
    for (int round = 0; round < kRounds; ++round)
        for (int encoder = 0; encoder < kEncoders; ++encoder)
            lines +=
                "pid: " + std::to_string(70000 + encoder) + " , P: " + std::to_string(round % 100) + "\n";
    return lines + "pid: " + std::to_string(kLastPid) + " , P: 100\n";
}

const std::string kLines = makeLines();

// Whole lines at a time, as encoders write them.
void writeLines()
{
    const int pipe = open(kFifo, O_WRONLY | O_CLOEXEC);
    for (std::size_t begin = 0; begin < kLines.size();) {
        const auto end = kLines.rfind('\n', std::min(begin + 4000, kLines.size() - 1)) + 1;
        if (write(pipe, kLines.data() + begin, end - begin) < 0)
            std::abort();
        begin = end;
    }
    close(pipe);
}

// Reads 1024 bytes at a time until `isLast` says so of what was read.
void readPipe(benchmark::State& state, const std::function<bool(const char*, std::size_t)>& isLast)
{
    std::filesystem::remove(kFifo);
    if (mkfifo(kFifo, 0600) != 0)
        std::abort();
    const int pipe = open(kFifo, O_RDWR | O_CLOEXEC);
    std::array<char, 1024> buffer{};
    for (auto _ : state) {
        std::thread writer(writeLines);
        ssize_t count = 0;
        do
            count = read(pipe, buffer.data(), buffer.size());
        while (count > 0 && !isLast(buffer.data(), static_cast<std::size_t>(count)));
        writer.join();
    }
    close(pipe);
}

void readAndThrowAway(benchmark::State& state)
{
    std::size_t read = 0;
    readPipe(state, [&](const char*, std::size_t count) {
        read += count;
        return read % kLines.size() == 0;
    });
}
BENCHMARK(readAndThrowAway)->UseRealTime();

void readWithSscanf(benchmark::State& state)
{
    struct Record {
        int percentage = -1;
        std::string path;
        std::string type;
        int errors = 0;
    };
    std::map<int, Record> records;
    std::string line;
    const auto takeLine = [&] {
        int pid = 0;
        int percentage = -1;
        char text[1024] = {};
        if (std::sscanf(line.c_str(), "pid: %d , P: %d", &pid, &percentage) >= 1 && percentage >= 0)
            records[pid].percentage = percentage;
        else if (std::sscanf(line.c_str(), "pid: %d , path: %1023[^\n]", &pid, text) >= 1 && text[0] != '\0')
            records[pid].path = text;
        else if (std::sscanf(line.c_str(), "pid: %d , enc_type: %1023s", &pid, text) >= 1 && text[0] != '\0')
            records[pid].type = text;
        else if (std::sscanf(line.c_str(), "pid: %d , ERROR: ", &pid) >= 1)
            ++records[pid].errors;
        return pid == kLastPid;
    };
    readPipe(state, [&](const char* bytes, std::size_t count) {
        bool wasLast = false;
        for (std::size_t i = 0; i < count; ++i) {
            if (bytes[i] != '\n') {
                line += bytes[i];
                continue;
            }
            wasLast = takeLine();
            line.clear();
        }
        return wasLast;
    });
}
BENCHMARK(readWithSscanf)->UseRealTime();

std::atomic<bool> lastIsThere = false;

void onMessage(void*, std::int32_t, std::int32_t type, const char*)
{
    if (type != kLastPid)
        return;
    lastIsThere = true;
    lastIsThere.notify_one();
}

void readWithBackend(benchmark::State& state)
{
    Kest::Settings::SystemPaths paths;
    std::filesystem::remove(kFifo);
    paths.encodingProgressFifo = kFifo;
    paths.sessionSegment = paths.versionSegment = "BENCH_LINES"; // no host
    Kest::Settings::Backend backend(paths);
    backend.messageCallback = onMessage;
    while (!std::filesystem::exists(kFifo))
        std::this_thread::yield();
    for (auto _ : state) {
        lastIsThere = false;
        std::thread writer(writeLines);
        lastIsThere.wait(false);
        writer.join();
    }
}
BENCHMARK(readWithBackend)->UseRealTime();

} // namespace
