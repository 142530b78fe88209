// k3dhost-simulator: simulates the settings agent's host, for demonstrations and tests. --help describes its
// scenario language.
#include "tools/k3dhost_simulator/CommandSource.h"
#include "tools/k3dhost_simulator/HostSegments.h"
#include "tools/k3dhost_simulator/Options.h"
#include "tools/k3dhost_simulator/ScenarioPlayer.h"

#include <chrono>
#include <csignal>
#include <cstdio>
#include <unistd.h>

using namespace K3DHostSimulator;

namespace {

constexpr std::chrono::milliseconds kPollInterval{10};
constexpr int kFailed = 1;
constexpr int kWrongInput = 2;

volatile std::sig_atomic_t stopRequested = 0;

void requestStop(int) { stopRequested = 1; }

void handleSignals()
{
    struct sigaction action {};
    action.sa_handler = requestStop;
    for (const int signal : {SIGTERM, SIGINT, SIGHUP})
        sigaction(signal, &action, nullptr);
    // The segments must be removed even if the reader of the output has ended.
    std::signal(SIGPIPE, SIG_IGN);
}

int fail(const std::string& line, int exitStatus)
{
    std::fprintf(stderr, "%s\n", line.c_str());
    return exitStatus;
}

int failAt(const Command& command, const std::string& what)
{
    return fail("line " + std::to_string(command.line) + ": " + what, kFailed);
}

int check()
{
    const pid_t host = runningHost();
    if (host == 0) {
        std::puts("no host");
        return kFailed;
    }
    std::printf("host running (process %d)\n", static_cast<int>(host));
    return 0;
}

// Runs until a signal, the end of the input or of the scenario, or a failure. Returns the exit status.
int play(CommandSource& source, ScenarioPlayer& player)
{
    Command current;
    while (stopRequested == 0 && !player.hasEnded()) {
        player.host().printWrites();
        if (player.updateWait()) {
            source.waitForInput(kPollInterval);
            continue;
        }
        if (player.failure())
            return failAt(current, *player.failure());
        std::string error;
        const auto command = source.next(error);
        if (!error.empty())
            return fail(error, kWrongInput);
        if (command) {
            current = *command;
            if (const auto failure = current.play(player))
                return failAt(current, *failure);
            continue;
        }
        if (source.hasEnded())
            return 0;
        source.waitForInput(kPollInterval);
    }
    return 0;
}

int run(const Options& options)
{
    const bool fromInput = options.scenario == "-";
    CommandSource source;
    if (fromInput)
        source.readFrom(STDIN_FILENO);
    else if (options.scenario)
        if (const auto failure = source.readFile(*options.scenario))
            return fail(*failure, kWrongInput);

    ScenarioPlayer player([](const std::string& line) { std::puts(line.c_str()); });
    if (!fromInput && !source.beginsWithStart())
        if (const auto failure = player.start(64, true))
            return fail(*failure, kFailed);
    return play(source, player);
}

} // namespace

int main(int argc, char** argv)
{
    std::setvbuf(stdout, nullptr, _IOLBF, BUFSIZ);
    int exitStatus = 0;
    const auto options = parseOptions(argc, argv, exitStatus);
    if (!options)
        return exitStatus;
    if (options->check)
        return check();
    handleSignals();
    return run(*options);
}
