// Eight encoders, a client, and between them the agent; beside them a process that signals to the same
// client.
#include "bench/BusBench.h"
#include "bench/Encoders.h"
#include "bench/MenuReader.h"
#include "bench/Samples.h"

#include <array>
#include <atomic>
#include <functional>
#include <random>
#include <stdexcept>
#include <sys/mman.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace Kest::Bench {
namespace {

constexpr int kEncoders = 8;
constexpr int kLinesPerSecond = 125; // of each
constexpr int kMostSeconds = 60;
constexpr int kPercentages = 100; // 0 to 99, over and over
constexpr char kPlain[] = "com.kestronics.bench.Plain";

/// When each line was written; 0 while it was not.
using WriteTimes = std::array<std::atomic<Clock::rep>, std::size_t{kLinesPerSecond} * kMostSeconds>;
using AllTimes = std::array<WriteTimes, kEncoders>;

AllTimes& sharedTimes()
{
    void* memory = mmap(nullptr, sizeof(AllTimes), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    if (memory == MAP_FAILED)
        throw std::runtime_error("no memory to share");
    return *static_cast<AllTimes*>(memory); // zeros, as the system gives it
}

Clock::rep now() { return Clock::now().time_since_epoch().count(); }
double since(Clock::rep time) { return milliseconds(Clock::duration(now() - time)); }

// At uneven intervals, so that writers meet each other in all ways; the same ones in each run.
void pace(int writer, int count, const std::function<void(int)>& act)
{
    std::minstd_rand random(static_cast<unsigned>(writer + 1));
    std::uniform_real_distribution<double> interval(0.5 / kLinesPerSecond, 1.5 / kLinesPerSecond);
    auto next = Clock::now();
    for (int i = 0; i < count; ++i) {
        next += std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(interval(random)));
        std::this_thread::sleep_until(next);
        act(i);
    }
}

void writeLines(int encoder, int count, WriteTimes& times)
{
    const EncoderPipe pipe;
    pace(encoder, count, [&](int line) {
        times[static_cast<std::size_t>(line)] = now();
        if (!pipe.write(progressLine(encoder, line % kPercentages)))
            throw std::runtime_error("a line was not taken");
    });
}

void sendPlainSignals(int count)
{
    sd_bus* bus = nullptr;
    if (sd_bus_open_user(&bus) < 0)
        throw std::runtime_error("no session bus");
    pace(kEncoders, count, [&](int) {
        sd_bus_emit_signal(bus, "/plain", kPlain, "Sent", "x", std::int64_t{now()});
        sd_bus_flush(bus);
    });
    sd_bus_flush_close_unref(bus);
}

void inChild(const std::function<void()>& work)
{
    const pid_t child = fork();
    if (child < 0)
        throw std::runtime_error("no process for a writer");
    if (child != 0)
        return;
    try {
        work();
    } catch (...) {
        _exit(1);
    }
    _exit(0);
}

/// What the client sees.
class Client {
public:
    Client(sd_bus* bus, AllTimes& writeTimes, int linesOfEach) : times(writeTimes), count(linesOfEach)
    {
        shown.fill(-1);
        for (const auto* name : {kMenuInterface, kPlain})
            sd_bus_add_match(bus, nullptr, ("type='signal',interface='" + std::string(name) + "'").c_str(),
                             &Client::onSignal, this);
    }
    bool hasSeenAll() const
    {
        return std::ranges::all_of(shown, [this](int last) { return last == count - 1; });
    }

    Samples lines;
    Samples plain;

private:
    static int onSignal(sd_bus_message* signal, void* client, sd_bus_error*)
    {
        auto& self = *static_cast<Client*>(client);
        Clock::rep sent = 0;
        if (sd_bus_message_is_signal(signal, kPlain, "Sent") > 0 &&
            sd_bus_message_read(signal, "x", &sent) > 0)
            self.plain.push_back(since(sent));
        for (const auto& [id, label] : changedLabels(signal))
            self.see(progressIn(label));
        return 0;
    }
    // A line that was overtaken by a later one of its encoding is shown by that one.
    void see(const Progress& progress)
    {
        if (progress.encoding < 0 || progress.encoding >= kEncoders)
            return;
        const auto encoder = static_cast<std::size_t>(progress.encoding);
        int line = shown[encoder] + 1;
        line += (progress.percentage - line % kPercentages + kPercentages) % kPercentages;
        if (line >= count || times[encoder][static_cast<std::size_t>(line)] == 0)
            return;
        while (shown[encoder] < line)
            lines.push_back(since(times[encoder][static_cast<std::size_t>(++shown[encoder])]));
    }

    AllTimes& times;
    const int count;
    std::array<int, kEncoders> shown{};
};

// So that from then on each line changes a row, and nothing else.
void introduceEncoders(const Watcher& watcher)
{
    const EncoderPipe pipe;
    for (int encoder = 0; encoder < kEncoders; ++encoder)
        pipe.write(nameLine(encoder) + progressLine(encoder, kPercentages - 1));
    const bool areThere = watcher.waitFor(
        [&] {
            return std::ranges::count_if(readMenu(watcher.bus(), watcher.item()), [](const Label& row) {
                       return progressIn(row.second).percentage == kPercentages - 1;
                   }) == kEncoders;
        },
        std::chrono::seconds(10));
    if (!areThere)
        throw std::runtime_error("the encodings do not come into the menu");
}

bool haveAllEnded(int& children)
{
    int status = 0;
    while (children > 0 && waitpid(-1, &status, WNOHANG) > 0) {
        if (status != 0)
            throw std::runtime_error("a writer failed, or the agent ended");
        --children;
    }
    return children == 0;
}

} // namespace

int lineToSignal(int seconds, const Command& agent)
{
    const int count = kLinesPerSecond * std::min(seconds, kMostSeconds);
    auto& times = sharedTimes();
    Watcher watcher;
    if (watcher.start(agent) < 0)
        throw std::runtime_error("the agent does not start");
    introduceEncoders(watcher);
    Client client(watcher.bus(), times, count);
    for (int encoder = 0; encoder < kEncoders; ++encoder)
        inChild([&] { writeLines(encoder, count, times[static_cast<std::size_t>(encoder)]); });
    inChild([&] { sendPlainSignals(count); });
    int children = kEncoders + 1;
    watcher.waitFor([&] { return haveAllEnded(children); }, std::chrono::seconds(2 * seconds + 10));
    if (!watcher.waitFor([&] { return client.hasSeenAll(); }, std::chrono::seconds(5)))
        throw std::runtime_error("the last lines were never shown");
    print("line_median_ms", median(client.lines));
    print("line_p99_ms", quantile(client.lines, 0.99));
    print("plain_median_ms", median(client.plain));
    print("plain_p99_ms", quantile(client.plain, 0.99));
    return 0;
}

} // namespace Kest::Bench
