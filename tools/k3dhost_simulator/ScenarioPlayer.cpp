#include "tools/k3dhost_simulator/ScenarioPlayer.h"

#include <csignal>
#include <cstdio>
#include <cstdlib>

namespace K3DHostSimulator {
namespace {

[[noreturn]] void killSelf()
{
    std::puts("host killed");
    std::fflush(stdout);
    std::raise(SIGKILL);
    std::abort();
}

} // namespace

Failure ScenarioPlayer::play(const Command& command)
{
    switch (command.kind) {
    case Command::Kind::Wait:
    case Command::Kind::WaitFor:
        wait = command;
        waitEnds = Clock::now() + command.duration;
        return std::nullopt;
    case Command::Kind::BusAdd:
        return host.addBus(command.id, command.text);
    case Command::Kind::BusRemove:
        return host.removeBus(command.id);
    case Command::Kind::BusRename:
        return host.renameBus(command.id, command.text);
    case Command::Kind::Message:
        return host.postMessage(command.number);
    case Command::Kind::Start:
        return start(command);
    case Command::Kind::Stop:
        host.stop();
        return std::nullopt;
    case Command::Kind::Kill:
        killSelf();
    case Command::Kind::End:
        host.stop();
        ended = true;
        return std::nullopt;
    }
    return std::nullopt;
}

Failure ScenarioPlayer::start(const Command& command)
{
    host.stop();
    heard.forget();
    return host.start(command.wordSize, command.withSettings);
}

bool ScenarioPlayer::isWaiting()
{
    if (!wait)
        return false;
    const bool forLine = wait->kind == Command::Kind::WaitFor;
    const bool satisfied = forLine && heard.take(wait->text);
    const bool timeIsUp = Clock::now() >= waitEnds;
    if (!satisfied && !timeIsUp)
        return true;
    if (forLine && !satisfied)
        timedOut =
            "nobody wrote '" + wait->text + "' within " + std::to_string(wait->duration.count()) + " ms";
    wait.reset();
    return false;
}

} // namespace K3DHostSimulator
