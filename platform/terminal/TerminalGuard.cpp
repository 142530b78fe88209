#include "platform/terminal/TerminalGuard.h"

#include <algorithm>
#include <atomic>
#include <csignal>
#include <iterator>
#include <poll.h>
#include <unistd.h>

namespace Kest::Terminal {
namespace {

constexpr int kCrashSignals[] = {SIGSEGV, SIGABRT, SIGBUS, SIGFPE, SIGILL};

// All data of the signal handler, prepared in advance.
std::atomic<bool> active = false;
int descriptor = -1;
char resetBytes[512];
std::size_t resetSize = 0;
termios modesBefore{};
struct sigaction actionsBefore[std::size(kCrashSignals)];
// After a stack overflow, the handler needs a separate stack.
constexpr std::size_t kHandlerStackBytes = 65536;
alignas(16) char handlerStack[kHandlerStackBytes];
stack_t stackBefore{};

void onCrash(int signal)
{
    TerminalGuard::restore();
    const auto* const crash = std::ranges::find(kCrashSignals, signal);
    sigaction(signal, &actionsBefore[crash - std::begin(kCrashSignals)], nullptr);
    raise(signal); // takes effect on return
}

} // namespace

bool isWritable(int terminal)
{
    pollfd output{terminal, POLLOUT, 0};
    return poll(&output, 1, 0) > 0 && (output.revents & POLLOUT) != 0;
}

TerminalGuard::TerminalGuard(int terminal, const std::string& resetSequence, const termios& before)
{
    descriptor = terminal;
    resetSize = std::min(resetSequence.size(), sizeof resetBytes);
    resetSequence.copy(resetBytes, resetSize);
    modesBefore = before;
    active = true;

    stack_t stack{};
    stack.ss_sp = handlerStack;
    stack.ss_size = sizeof handlerStack;
    sigaltstack(&stack, &stackBefore);
    struct sigaction action {};
    action.sa_handler = onCrash;
    action.sa_flags = SA_ONSTACK;
    for (std::size_t i = 0; i < std::size(kCrashSignals); ++i)
        sigaction(kCrashSignals[i], &action, &actionsBefore[i]);
}

TerminalGuard::~TerminalGuard()
{
    active = false;
    for (std::size_t i = 0; i < std::size(kCrashSignals); ++i)
        sigaction(kCrashSignals[i], &actionsBefore[i], nullptr);
    sigaltstack(&stackBefore, nullptr);
}

void TerminalGuard::setActive(bool isActive) { active = isActive; }

void TerminalGuard::restore()
{
    if (!active.exchange(false))
        return;
    if (isWritable(descriptor)) [[maybe_unused]]
        const auto written = write(descriptor, resetBytes, resetSize);
    tcsetattr(descriptor, TCSANOW, &modesBefore);
}

} // namespace Kest::Terminal
