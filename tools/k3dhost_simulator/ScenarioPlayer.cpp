#include "tools/k3dhost_simulator/ScenarioPlayer.h"

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <cstdlib>

namespace K3DHostSimulator {

ScenarioPlayer::ScenarioPlayer(const Host::Print& print)
    : played(print, [this, print](const std::string& line) {
          print(line);
          hear(line);
      })
{}

Failure ScenarioPlayer::start(int wordSize, bool withSettings)
{
    played.stop();
    heard.clear();
    return played.start(wordSize, withSettings);
}

void ScenarioPlayer::end()
{
    played.stop();
    ended = true;
}

void ScenarioPlayer::killSelf()
{
    std::puts("host killed");
    std::fflush(stdout);
    std::raise(SIGKILL);
    std::abort();
}

void ScenarioPlayer::wait(std::chrono::milliseconds atMost, const std::string& line)
{
    awaited = line;
    patience = atMost;
    waitEnds = Clock::now() + atMost;
}

bool ScenarioPlayer::isWaiting()
{
    if (!awaited)
        return false;
    const bool satisfied = takeHeard(*awaited);
    if (!satisfied && Clock::now() < waitEnds)
        return true;
    if (!satisfied && !awaited->empty())
        timedOut = "nobody wrote '" + *awaited + "' within " + std::to_string(patience.count()) + " ms";
    awaited.reset();
    return false;
}

void ScenarioPlayer::hear(const std::string& line)
{
    // No wait needs older lines, and a host that runs for days must not use more and more memory.
    constexpr std::size_t kKept = 1000;
    if (heard.size() == kKept)
        heard.pop_front();
    heard.push_back(line);
}

bool ScenarioPlayer::takeHeard(const std::string& line)
{
    const auto found = std::find(heard.begin(), heard.end(), line);
    if (found == heard.end())
        return false;
    heard.erase(found);
    return true;
}

} // namespace K3DHostSimulator
