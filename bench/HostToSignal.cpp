// Buses that are renamed in the host's segment at any time between two passes of the agent. A number that the
// host posts is passed on in the same pass, and changes nothing that a client could see.
#include "bench/BusBench.h"
#include "bench/MenuReader.h"
#include "bench/Samples.h"
#include "lipc/SessionBuffer.h"
#include "lipc/SettingsRecord.h"
#include "lipc/ShmManaged.h"

#include <cstring>
#include <random>
#include <stdexcept>

namespace Kest::Bench {
namespace {

constexpr std::size_t kBuses = 4;
constexpr std::chrono::milliseconds kLongestPause{1000}; // a pass of the agent's monitor

struct Bus {
    LIPC::ClientEntry* entry;
    Clock::time_point changed{};
    Clock::time_point next{};
    std::string name;
    bool isPending = false;
};

class Renames {
public:
    Renames(const Watcher& agentsWatcher, LIPC::SessionBuffer& session) : watcher(agentsWatcher)
    {
        for (auto& client : session.clients)
            if (client.type == LIPC::kBusType && buses.size() < kBuses)
                buses.push_back({.entry = &client, .next = nextTime(), .name = {}});
        if (buses.size() < kBuses)
            throw std::runtime_error("the host has too few buses");
        sd_bus_add_match(watcher.bus(), nullptr, "type='signal',interface='com.canonical.dbusmenu'",
                         &Renames::onSignal, this);
    }

    // Whether all that was renamed is shown.
    bool step(bool mayRename)
    {
        look();
        for (auto& bus : buses)
            if (mayRename && !bus.isPending && Clock::now() >= bus.next)
                rename(bus);
        return std::ranges::none_of(buses, &Bus::isPending);
    }

    Samples delays;

private:
    static int onSignal(sd_bus_message*, void* renames, sd_bus_error*)
    {
        auto& told = static_cast<Renames*>(renames)->told;
        if (told == Clock::time_point{})
            told = Clock::now();
        return 0;
    }
    Clock::time_point nextTime()
    {
        std::uniform_int_distribution<int> pause(0, static_cast<int>(kLongestPause.count()));
        return Clock::now() + std::chrono::milliseconds(pause(random));
    }
    void rename(Bus& bus)
    {
        bus.name = "Take " + std::to_string(++takes);
        bus.changed = Clock::now();
        bus.isPending = true;
        std::memcpy(bus.entry->label, bus.name.c_str(), bus.name.size() + 1);
    }
    // A signal of another shape does not carry the names: they are asked for, but its own time counts.
    void look()
    {
        if (told == Clock::time_point{})
            return;
        const auto when = std::exchange(told, {});
        const auto menu = readMenu(watcher.bus(), watcher.item());
        for (auto& bus : buses)
            if (bus.isPending && bus.changed < when &&
                std::ranges::count(menu, bus.name, &Label::second) > 0) {
                delays.push_back(milliseconds(when - bus.changed));
                bus.isPending = false;
                bus.next = nextTime();
            }
    }

    const Watcher& watcher;
    std::minstd_rand random{std::random_device{}()};
    std::vector<Bus> buses;
    int takes = 0;
    Clock::time_point told{}; // when the first signal came that was not looked into yet
};

} // namespace

int hostToSignal(int seconds, const Command& agent)
{
    const LIPC::ShmManagedOpen<LIPC::SessionBuffer> session(LIPC::kSessionSegment);
    Watcher watcher;
    if (session.contents() == nullptr || watcher.start(agent) < 0)
        throw std::runtime_error("no host, or no agent");
    Renames renames(watcher, *session.contents());
    const auto renameOn = [&] {
        renames.step(true);
        return false;
    };
    watcher.waitFor(renameOn, std::chrono::seconds(seconds));
    if (!watcher.waitFor([&] { return renames.step(false); }, std::chrono::seconds(5)))
        throw std::runtime_error("a new name was never shown");
    print("rename_median_ms", median(renames.delays));
    print("rename_p99_ms", quantile(renames.delays, 0.99));
    return 0;
}

} // namespace Kest::Bench
