#include "backend/Process.h"

#include "backend/ProcessFacts.h"

#include <cerrno>
#include <chrono>
#include <csignal>
#include <poll.h>
#include <system_error>
#include <thread>
#include <unistd.h>

namespace Kest::Settings {
namespace {

using State = ProcessFacts::State;
using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

constexpr milliseconds kPatience{5000};
constexpr milliseconds kPollInterval{10};
constexpr int kMaxAncestors = 1000;

bool isAgentOrAncestor(std::int32_t pid)
{
    auto ancestor = static_cast<std::int32_t>(getpid());
    for (int i = 0; i < kMaxAncestors && ancestor > 0; ++i) {
        if (ancestor == pid)
            return true;
        ancestor = ancestor == getpid() ? getppid() : processFacts(ancestor).parent;
    }
    return false;
}

std::string refusal(std::int32_t pid, const ProcessFacts& facts)
{
    if (pid <= 1 || isAgentOrAncestor(pid))
        return "is this agent or one of its ancestors";
    if (facts.realUser != geteuid() || facts.effectiveUser != geteuid())
        return "belongs to another user";
    return {};
}

bool hasEnded(const ProcessIdentity& process)
{
    const auto facts = processFacts(process.pid);
    return facts.state == State::ended || (facts.startTime != 0 && facts.startTime != process.startTime);
}

bool waitForEnd(const Descriptor& held, const ProcessIdentity& process)
{
    const auto end = Clock::now() + kPatience;
    while (Clock::now() < end) {
        if (held) {
            const auto left = std::chrono::ceil<milliseconds>(end - Clock::now());
            pollfd readable{held.get(), POLLIN, 0};
            if (poll(&readable, 1, static_cast<int>(left.count())) == 1)
                return true;
        } else {
            if (hasEnded(process))
                return true;
            std::this_thread::sleep_for(kPollInterval);
        }
    }
    return false;
}

std::string killAndWait(const ProcessIdentity& process)
{
    // Opened first, so that all checks are about the process that is killed and not about a later one.
    const auto held = holdProcess(process.pid);
    const auto facts = processFacts(process.pid);
    if (facts.state == State::unreadable)
        return "cannot be examined";
    if (facts.state == State::thread && process.startTime == 0)
        return "is a thread of a process";
    if (facts.state != State::running || facts.startTime != process.startTime)
        return {};
    if (auto reason = refusal(process.pid, facts); !reason.empty())
        return reason;
    if (!(held ? killHeld(held) : kill(process.pid, SIGKILL) == 0) && errno != ESRCH)
        return std::generic_category().message(errno);
    return waitForEnd(held, process) ? "" : "does not end";
}

} // namespace

ProcessIdentity identifyProcess(std::int32_t pid) { return {pid, processFacts(pid).startTime}; }

std::string endProcess(const ProcessIdentity& process)
{
    const auto reason = killAndWait(process);
    return reason.empty() ? reason : "process " + std::to_string(process.pid) + " not ended: " + reason;
}

} // namespace Kest::Settings
