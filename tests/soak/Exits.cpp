// Starts and exits of the whole agent but for its real places, with everything in flight at the exit.
//
//   soak-exits COUNT      says "result EXITS BAD SLOWEST_MS"
#include "app/KestSettingsAppDelegate.h"
#include "platform/terminal/TextFrontEnd.h"
#include "tests/support/FakeFrontEnd.h"
#include "tests/support/TestPlace.h"

#include <chrono>
#include <csignal>
#include <cstdio>
#include <fcntl.h>
#include <random>
#include <sys/wait.h>
#include <unistd.h>

namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

constexpr int kSeed = 4711;
constexpr auto kMonitorPeriod = 100us; // a hundred passes while one exit lasts
constexpr int kLongestLifeUs = 12000;

int runAgent(const Kest::Settings::SystemPaths& paths)
{
    Kest::Terminal::TextFrontEnd frontEnd;
    Kest::Test::FakeWorkspace workspace; // has no launchctl
    Kest::App::KestSettingsAppDelegate delegate(frontEnd, workspace, paths, kMonitorPeriod);
    delegate.awakeFromNib();
    delegate.applicationDidFinishLaunching();
    frontEnd.run(delegate);
    delegate.applicationWillTerminate();
    return 0;
}

/// The agent as a process of its own, with a pipe for its standard input.
class Agent {
public:
    explicit Agent(const Kest::Settings::SystemPaths& paths)
    {
        int ends[2];
        if (pipe2(ends, O_CLOEXEC | O_NONBLOCK) != 0)
            std::abort();
        process = fork();
        if (process == 0) {
            dup2(ends[0], STDIN_FILENO);
            const int output = open("/dev/null", O_WRONLY | O_CLOEXEC);
            dup2(output, STDOUT_FILENO);
            std::exit(runAgent(paths));
        }
        close(ends[0]);
        input = ends[1];
    }
    ~Agent() { close(input); }
    Agent(const Agent&) = delete;
    Agent& operator=(const Agent&) = delete;

    void say(const std::string& line) const
    {
        [[maybe_unused]] const auto written = write(input, line.data(), line.size());
    }
    int end() const
    {
        kill(process, SIGTERM);
        int status = 0;
        waitpid(process, &status, 0);
        return status;
    }

private:
    pid_t process = -1;
    int input = -1;
};

/// Encoders, bus plug-ins and the user, all at once.
void keepBusy(const Agent& agent, Kest::Test::TestPlace& place, Clock::time_point end)
{
    int encoders = -1;
    for (int i = 0; Clock::now() < end; ++i) {
        place.session->putBus(10, "bus-1", i % 2 == 0 ? "Dialog" : "Music");
        if (encoders < 0)
            encoders = open(place.paths.encodingProgressFifo.c_str(), O_WRONLY | O_NONBLOCK | O_CLOEXEC);
        const auto pid = std::to_string(100000 + i % 50);
        const auto lines = "pid: " + pid + " , path: /x/Film.wav\npid: " + pid + " , P: 0.5\npid: " + pid;
        if (encoders >= 0) [[maybe_unused]]
            const auto written = write(encoders, lines.data(), lines.size());
        agent.say(i % 2 == 0 ? "choose Solo Mode > Latch\n" : "choose Solo Mode > Exclusive (XOR)\nmenu\n");
        usleep(200);
    }
    if (encoders >= 0)
        close(encoders);
}

struct Exit {
    bool well;
    double milliseconds;
};

Exit startAndExit(Kest::Test::TestPlace& place, Clock::duration life)
{
    const auto& fifo = place.paths.encodingProgressFifo;
    const Agent agent(place.paths);
    keepBusy(agent, place, Clock::now() + life);
    const bool hasBegun = std::filesystem::exists(fifo);
    const auto begin = Clock::now();
    const int status = agent.end();
    const std::chrono::duration<double, std::milli> taken = Clock::now() - begin;
    // Until the agent takes signals, the first one ends it as any program.
    const bool tooEarly = !hasBegun && WIFSIGNALED(status) && WTERMSIG(status) == SIGTERM;
    const bool well =
        tooEarly || (WIFEXITED(status) && WEXITSTATUS(status) == 0 && !std::filesystem::exists(fifo));
    return {well, taken.count()};
}

} // namespace

int main(int count, char** words)
{
    if (count < 2)
        return 2;
    std::signal(SIGPIPE, SIG_IGN);
    Kest::Test::TestPlace place;
    place.startHost();
    std::mt19937 random{kSeed};
    const int exits = std::stoi(words[1]);
    int bad = 0;
    double slowest = 0;
    for (int i = 0; i < exits; ++i) {
        const auto exit = startAndExit(place, std::chrono::microseconds(random() % kLongestLifeUs));
        bad += exit.well ? 0 : 1;
        slowest = std::max(slowest, exit.milliseconds);
    }
    std::printf("result %d %d %.0f\n", exits, bad, slowest);
    return 0;
}
