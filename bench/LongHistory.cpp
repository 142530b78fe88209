// A history that is filled first, and then the newest ten encodings of it that report on. Each message waits
// for the signal that the one before has caused, so that the agent handles every one by itself.
#include "bench/BusBench.h"
#include "bench/Encoders.h"
#include "bench/MenuReader.h"
#include "bench/ProcessFigures.h"
#include "bench/Samples.h"

#include <stdexcept>

namespace Kest::Bench {
namespace {

constexpr int kRunning = 10;
constexpr int kBatches = 10; // of ten messages from each of the running ones
constexpr int kFilledAtOnce = 100;
constexpr std::chrono::seconds kPatience{10};
constexpr double kMicrosecondsInMs = 1000;

class History {
public:
    explicit History(const Watcher& agentsWatcher) : watcher(agentsWatcher)
    {
        sd_bus_add_match(watcher.bus(), nullptr, "type='signal',interface='com.canonical.dbusmenu'",
                         &History::onSignal, this);
    }

    // The first one goes on reporting, which tells when what was written before it is handled.
    void fill(int encodings)
    {
        pipe.write(nameLine(0) + progressLine(0, 0));
        const auto isInMenu = [this] {
            return std::ranges::count(readMenu(watcher.bus(), watcher.item()), encodingName(0) + "  0%",
                                      &Label::second) > 0;
        };
        if (!watcher.waitFor(isInMenu, kPatience))
            throw std::runtime_error("an encoding does not come into the menu");
        for (int first = 1; first < encodings; first += kFilledAtOnce) {
            for (int i = first; i < std::min(first + kFilledAtOnce, encodings); ++i)
                pipe.write(nameLine(i) + progressLine(i, 100));
            report(0, first / kFilledAtOnce % 99 + 1);
        }
    }

    // Until a client has it.
    void report(int encoding, int percentage)
    {
        last = {};
        pipe.write(progressLine(encoding, percentage));
        const bool isShown = watcher.waitFor(
            [&] { return last.encoding == encoding && last.percentage == percentage; }, kPatience);
        if (!isShown)
            throw std::runtime_error("a message was never shown");
    }

    /// How many of the encodings the menu has kept.
    double length() const
    {
        const auto menu = readMenu(watcher.bus(), watcher.item());
        return static_cast<double>(std::ranges::count_if(
            menu, [](const Label& row) { return progressIn(row.second).encoding >= 0; }));
    }

private:
    static int onSignal(sd_bus_message* signal, void* history, sd_bus_error*)
    {
        for (const auto& [id, label] : changedLabels(signal))
            if (const auto progress = progressIn(label); progress.encoding >= 0)
                static_cast<History*>(history)->last = progress;
        return 0;
    }

    const Watcher& watcher;
    EncoderPipe pipe;
    Progress last;
};

} // namespace

int longHistory(int encodings, const Command& agent)
{
    Watcher watcher;
    if (encodings < kRunning || watcher.start(agent) < 0)
        throw std::runtime_error("fewer than ten encodings, or no agent");
    History history(watcher);
    history.fill(encodings);
    Samples costs;
    for (int batch = 0; batch < kBatches; ++batch) {
        const auto before = activityOf(watcher.pid());
        for (int message = 0; message < kRunning * kRunning; ++message)
            history.report(encodings - kRunning + message % kRunning, batch * kRunning + message / kRunning);
        const auto used = activityOf(watcher.pid()).cpuMs - before.cpuMs;
        costs.push_back(used * kMicrosecondsInMs / (kRunning * kRunning));
    }
    print("message_us", median(costs));
    print("history_uss_mb", memoryOf(watcher.pid()).privateMb);
    print("kept", history.length());
    return 0;
}

} // namespace Kest::Bench
