#include "platform/terminal/TerminalGuard.h"

#include <algorithm>
#include <atomic>
#include <csignal>
#include <iterator>
#include <poll.h>
#include <unistd.h>

namespace Kest::Terminal {
namespace {

constexpr int kCrashes[] = {SIGSEGV, SIGABRT, SIGBUS, SIGFPE, SIGILL};

// All data of the signal handler, prepared in advance.
std::atomic<bool> active = false;
int descriptor = -1;
char farewellBytes[512];
std::size_t farewellSize = 0;
termios modesBefore{};
struct sigaction actionsBefore[std::size(kCrashes)];
// After a stack overflow, the handler needs a separate stack.
constexpr std::size_t kHandlerStackBytes = 65536;
alignas(16) char handlerStack[kHandlerStackBytes];
stack_t stackBefore{};

void onCrash(int signal)
{
    TerminalGuard::restore();
    const auto* const crash = std::ranges::find(kCrashes, signal);
    sigaction(signal, &actionsBefore[crash - std::begin(kCrashes)], nullptr);
    raise(signal); // takes effect on return
}

} // namespace

bool takesOutput(int terminal)
{
    pollfd output{terminal, POLLOUT, 0};
    return poll(&output, 1, 0) > 0 && (output.revents & POLLOUT) != 0;
}

TerminalGuard::TerminalGuard(int terminal, const std::string& farewell, const termios& before)
{
    descriptor = terminal;
    farewellSize = std::min(farewell.size(), sizeof farewellBytes);
    farewell.copy(farewellBytes, farewellSize);
    modesBefore = before;
    active = true;

    stack_t stack{};
    stack.ss_sp = handlerStack;
    stack.ss_size = sizeof handlerStack;
    sigaltstack(&stack, &stackBefore);
    struct sigaction action {};
    action.sa_handler = onCrash;
    action.sa_flags = SA_ONSTACK;
    for (std::size_t i = 0; i < std::size(kCrashes); ++i)
        sigaction(kCrashes[i], &action, &actionsBefore[i]);
}

TerminalGuard::~TerminalGuard()
{
    active = false;
    for (std::size_t i = 0; i < std::size(kCrashes); ++i)
        sigaction(kCrashes[i], &actionsBefore[i], nullptr);
    sigaltstack(&stackBefore, nullptr);
}

void TerminalGuard::setActive(bool isActive) { active = isActive; }

void TerminalGuard::restore()
{
    if (!active.exchange(false))
        return;
    if (takesOutput(descriptor)) [[maybe_unused]]
        const auto written = write(descriptor, farewellBytes, farewellSize);
    tcsetattr(descriptor, TCSANOW, &modesBefore);
}

} // namespace Kest::Terminal
