// The agent's core at work while its host is killed and started again, at any moment.
//
//   soak-host-killed HOST_SIMULATOR KILLS     in a private world; says "result KILLS WRONG"
#include "backend/Backend.h"
#include "lipc/SessionBuffer.h"
#include "lipc/SharedNumber.h"
#include "lipc/ShmManaged.h"
#include "tests/support/Process.h"

#include <chrono>
#include <csignal>
#include <cstdio>
#include <random>
#include <string>
#include <thread>

namespace {

using namespace std::chrono_literals;
constexpr int kSeed = 4711;
constexpr auto kMonitorPeriod = 200us;
constexpr auto kDeadline = 10s; // for a host to come up

class Session : public LIPC::ShmManagedOpen<LIPC::SessionBuffer> {
public:
    Session() : ShmManagedOpen(LIPC::kSessionSegment) {}

    const LIPC::ClientEntry* agent() const
    {
        return contents() == nullptr ? nullptr : contents()->getClientEntry("KestSettings");
    }
    bool hasSoloMode(int mode) const
    {
        return agent() != nullptr && LIPC::loadShared(agent()->params[4]) == static_cast<float>(mode);
    }
};

/// The host that was killed leaves its segment, which the new one replaces.
bool isReplaced(int before)
{
    const auto end = std::chrono::steady_clock::now() + kDeadline;
    for (;;) {
        if (const Session now; now.id != before && now.agent() != nullptr)
            return true;
        if (std::chrono::steady_clock::now() > end)
            return false;
        std::this_thread::sleep_for(1ms);
    }
}

} // namespace

int main(int count, char** words)
{
    if (count < 3)
        return 2;
    const int kills = std::stoi(words[2]);
    std::mt19937 random{kSeed};
    Kest::Settings::Backend backend({}, kMonitorPeriod);
    backend.messageCallback = [](void*, int, int, const char*) {};
    int wrong = 0;
    for (int i = 1; i <= kills; ++i) {
        backend.setSoloMode(-1); // into what the last host has left
        const int before = Session().id;
        const Kest::Test::Process host({words[1], "--scenario", "-"});
        host.say("start\nbus add bus-1 Dialog");
        const bool killedWhileStarting = i % 4 == 0;
        if (!killedWhileStarting) {
            const bool up = isReplaced(before);
            backend.setSoloMode(i);
            if (!up || !Session().hasSoloMode(i) || backend.getSoloMode() != i)
                ++wrong;
        }
        // It dies while the agent works, within 4 ms.
        const auto end = std::chrono::steady_clock::now() + std::chrono::microseconds(random() % 4000);
        std::thread killer([&] {
            std::this_thread::sleep_until(end);
            host.signal(SIGKILL);
        });
        std::vector<std::string> names;
        while (std::chrono::steady_clock::now() < end + 1ms) {
            backend.setDefaultKestBus("Dialog");
            backend.getKestBusNamesList(names);
            backend.setDAW_LinkControl(i % 2);
        }
        killer.join();
    }
    std::printf("result %d %d\n", kills, wrong);
    return 0;
}
