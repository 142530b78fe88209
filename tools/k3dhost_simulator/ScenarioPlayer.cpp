#include "tools/k3dhost_simulator/ScenarioPlayer.h"

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <cstdlib>

namespace K3DHostSimulator {

ScenarioPlayer::ScenarioPlayer(const Host::Print& print)
    : simulatedHost(print, [this, print](const std::string& line) {
          print(line);
          recordWrite(line);
      })
{}

Failure ScenarioPlayer::start(int wordSize, bool withSettings)
{
    simulatedHost.stop();
    unusedWrites.clear();
    return simulatedHost.start(wordSize, withSettings);
}

void ScenarioPlayer::end()
{
    simulatedHost.stop();
    ended = true;
}

void ScenarioPlayer::killSelf()
{
    std::puts("host killed");
    std::fflush(stdout);
    std::raise(SIGKILL);
    std::abort();
}

void ScenarioPlayer::wait(std::chrono::milliseconds timeLimit, const std::string& line)
{
    awaited = line;
    timeout = timeLimit;
    waitEnds = Clock::now() + timeLimit;
}

bool ScenarioPlayer::updateWait()
{
    if (!awaited)
        return false;
    const bool satisfied = takeWrite(*awaited);
    if (!satisfied && Clock::now() < waitEnds)
        return true;
    if (!satisfied && !awaited->empty())
        timedOut = "no write printed '" + *awaited + "' within " + std::to_string(timeout.count()) + " ms";
    awaited.reset();
    return false;
}

void ScenarioPlayer::recordWrite(const std::string& line)
{
    // No wait needs older lines, and a host that runs for days must not use more and more memory.
    constexpr std::size_t kMaxWrites = 1000;
    if (unusedWrites.size() == kMaxWrites)
        unusedWrites.pop_front();
    unusedWrites.push_back(line);
}

bool ScenarioPlayer::takeWrite(const std::string& line)
{
    const auto found = std::find(unusedWrites.begin(), unusedWrites.end(), line);
    if (found == unusedWrites.end())
        return false;
    unusedWrites.erase(found);
    return true;
}

} // namespace K3DHostSimulator
