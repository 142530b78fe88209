// bus_bench watch PROGRAM... | signals COUNT | choice COUNT ITEM ROW | naive
#include "bench/BusBench.h"

#include "bench/NaivePass.h"
#include "lipc/SettingsRecord.h"

#include <cstdio>
#include <exception>
#include <random>
#include <stdexcept>
#include <thread>

namespace Kest::Bench {

sd_bus* connect()
{
    sd_bus* bus = nullptr;
    if (sd_bus_open_user(&bus) < 0)
        throw std::runtime_error("no session bus");
    return bus;
}

int sendPlainSignals(int count)
{
    auto* bus = connect();
    std::minstd_rand random(1);
    std::uniform_int_distribution<int> interval(4000, 12000);
    auto next = Clock::now();
    for (int i = 0; i < count; ++i) {
        std::this_thread::sleep_until(next += std::chrono::microseconds(interval(random)));
        sd_bus_emit_signal(bus, "/plain", kPlain, "Sent", "x",
                           std::int64_t{Clock::now().time_since_epoch().count()});
        sd_bus_flush(bus);
    }
    sd_bus_flush_close_unref(bus);
    return 0;
}

} // namespace Kest::Bench

int main(int argc, char** argv)
{
    using namespace Kest::Bench;
    const std::vector<std::string> words(argv + 1, argv + argc);
    const auto mode = words.empty() ? "" : words[0];
    try {
        if (mode == "watch" && words.size() > 1)
            return watch({words.begin() + 1, words.end()});
        if (mode == "signals" && words.size() == 2)
            return sendPlainSignals(std::stoi(words[1]));
        if (mode == "choice" && words.size() == 4)
            return choiceToHost(std::stoi(words[1]), words[2], std::stoi(words[3]));
        if (mode == "naive")
            for (;; std::this_thread::sleep_for(std::chrono::seconds(1)))
                naivePass(LIPC::kSessionSegment);
        return 2;
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "bus_bench %s: %s\n", mode.c_str(), failure.what());
        return 1;
    }
}
