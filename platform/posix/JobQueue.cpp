#include "platform/posix/JobQueue.h"

#include "log/Output.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <unistd.h>
#include <utility>

namespace Kest::Posix {
namespace {

constexpr int kEndingSignals[] = {SIGTERM, SIGINT, SIGHUP};
constexpr unsigned kShutdownTimeout = 5; // seconds, for a main thread blocked by a disk, a terminal or a bus

// Accessed by signal handlers.
std::atomic<const Settings::WakeUp*> signalWakeUp = nullptr;
std::atomic<std::uint32_t> arrivedSignals = 0; // combined by `bit`
std::atomic<int> endingSignal = 0;             // the first one
std::atomic<void (*)()> emergencyCleanup = nullptr;

constexpr std::uint32_t bit(int signal) { return std::uint32_t{1} << signal; }

void onSignal(int signal)
{
    const int before = errno;
    arrivedSignals |= bit(signal);
    if (const auto* wakeUp = signalWakeUp.load(); wakeUp != nullptr)
        wakeUp->raise();
    errno = before;
}

void exitAtOnce(int)
{
    if (const auto cleanUp = emergencyCleanup.load(); cleanUp != nullptr)
        cleanUp();
    _exit(128 + endingSignal);
}

void onEndingSignal(int signal)
{
    if (int none = 0; !endingSignal.compare_exchange_strong(none, signal))
        exitAtOnce(signal);
    alarm(kShutdownTimeout);
    onSignal(signal);
}

void handle(int signal, void (*handler)(int))
{
    struct sigaction action {};
    action.sa_handler = handler;
    action.sa_flags = SA_RESTART;
    sigaction(signal, &action, nullptr);
}

// The parent process may have blocked them.
void unblockSignals()
{
    sigset_t needed;
    sigemptyset(&needed);
    sigaddset(&needed, SIGALRM);
    for (const int signal : kEndingSignals)
        sigaddset(&needed, signal);
    pthread_sigmask(SIG_UNBLOCK, &needed, nullptr);
}

} // namespace

JobQueue::JobQueue()
{
    if (wakeUp.descriptor() < 0) {
        Lct::printSystemError("Kest Settings cannot start");
        std::exit(1); // the loop cannot run, and nothing has been started yet
    }
    signalWakeUp = &wakeUp;
    arrivedSignals = 0;
    endingSignal = 0;
    alarm(0);
    handle(SIGALRM, exitAtOnce);
    for (const int signal : kEndingSignals)
        handle(signal, onEndingSignal);
    unblockSignals();
    handle(SIGPIPE, SIG_IGN); // the end of a reader of the output does not end the agent
}

JobQueue::~JobQueue()
{
    for (const auto& [signal, arrived] : signals)
        handle(signal, SIG_DFL);
    if (endingSignal == 0) { // otherwise the five seconds include the rest of the shutdown
        for (const int signal : kEndingSignals)
            handle(signal, SIG_DFL);
        handle(SIGALRM, SIG_DFL);
        emergencyCleanup = nullptr;
    }
    signalWakeUp = nullptr;
}

void JobQueue::post(std::function<void()> job)
{
    const MutexLock lock(jobsMutex);
    jobs.push_back(std::move(job));
    if (jobs.size() == 1) // otherwise the loop has been woken
        wakeUp.raise();
}

void JobQueue::watchSignal(int signal, std::function<void()> arrived)
{
    signals[signal] = std::move(arrived);
    handle(signal, onSignal);
}

void JobQueue::setEmergencyCleanup(void (*cleanup)()) { emergencyCleanup = cleanup; }

void JobQueue::dispatchWakeUps()
{
    wakeUp.clear();
    handleSignals();
    for (const auto& job : takeJobs())
        if (!quitting)
            job();
}

// Handles ending signals before all others, so that no other handler runs at the end.
void JobQueue::handleSignals()
{
    const auto arrived = arrivedSignals.exchange(0);
    const auto has = [arrived](int signal) { return (arrived & bit(signal)) != 0; };
    quitting = quitting || std::ranges::any_of(kEndingSignals, has);
    for (const auto& [signal, handler] : signals)
        if (has(signal) && !quitting)
            handler();
}

std::deque<std::function<void()>> JobQueue::takeJobs()
{
    const MutexLock lock(jobsMutex);
    return std::exchange(jobs, {});
}

} // namespace Kest::Posix
