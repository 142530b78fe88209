#include "tools/kest_inspect/Watch.h"

#include "tools/kest_inspect/Changes.h"

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <ctime>
#include <initializer_list>
#include <sys/select.h>

namespace KestInspect {
namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

volatile std::sig_atomic_t stopRequested = 0;

void requestStop(int) { stopRequested = 1; }

/// Unblocks the ending signals only while it sleeps, so that none arrives just before a sleep and is missed.
class InterruptibleSleep {
public:
    InterruptibleSleep()
    {
        struct sigaction action {};
        action.sa_handler = requestStop;
        sigset_t ending;
        sigemptyset(&ending);
        for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
            sigaction(signal, &action, nullptr);
            sigaddset(&ending, signal);
        }
        pthread_sigmask(SIG_BLOCK, &ending, &unblocked);
        for (const int signal : {SIGINT, SIGTERM, SIGHUP})
            sigdelset(&unblocked, signal); // the parent process may have blocked them
    }

    void sleep(milliseconds time) const
    {
        constexpr auto kThousand = 1000;
        const timespec rest{static_cast<std::time_t>(time.count() / kThousand),
                            static_cast<long>(time.count() % kThousand * kThousand * kThousand)};
        pselect(0, nullptr, nullptr, nullptr, &rest, &unblocked);
    }

private:
    sigset_t unblocked{};
};

// "2026-03-01T14:05:09.004+0100"
std::string timeNow()
{
    const auto now = std::chrono::system_clock::now();
    const auto seconds = std::chrono::system_clock::to_time_t(now);
    const auto fraction = std::chrono::duration_cast<milliseconds>(now.time_since_epoch()).count() % 1000;
    std::tm local{};
    localtime_r(&seconds, &local);
    char day[32];
    char zone[8];
    std::strftime(day, sizeof day, "%Y-%m-%dT%H:%M:%S", &local);
    std::strftime(zone, sizeof zone, "%z", &local);
    char whole[64];
    std::snprintf(whole, sizeof whole, "%s.%03d%s", day, static_cast<int>(fraction), zone);
    return whole;
}

void print(const std::vector<Printed>& changes, bool asJson)
{
    const auto time = timeNow();
    constexpr auto kClock = 11; // index of the time of day
    constexpr auto kClockLength = 12;
    for (const auto& [text, json] : changes) {
        auto timed = json;
        timed["time"] = time;
        std::puts((asJson ? jsonLine(timed) : time.substr(kClock, kClockLength) + "  " + text).c_str());
    }
}

} // namespace

void watch(const Kest::Settings::SystemPaths& paths, const Options& options)
{
    std::setvbuf(stdout, nullptr, _IOLBF, BUFSIZ);
    const InterruptibleSleep pause;
    const auto start = Clock::now();
    const milliseconds interval(options.interval);
    const auto left = [&] {
        const auto passed = std::chrono::duration_cast<milliseconds>(Clock::now() - start);
        return options.seconds ? std::min(std::chrono::seconds(*options.seconds) - passed, interval)
                               : interval;
    };
    auto known = readHost(paths);
    print(snapshotAsChanges(known), options.json);
    while (stopRequested == 0 && left().count() > 0 && std::ferror(stdout) == 0) {
        pause.sleep(left());
        auto now = readHost(paths);
        print(changesBetween(known, now), options.json);
        known = std::move(now);
    }
}

} // namespace KestInspect
