#include "platform/posix/JobQueue.h"

#include "log/Output.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <iterator>
#include <set>
#include <unistd.h>
#include <utility>

namespace Kest::Posix {
namespace {

// What is written into the pipe: the number of a signal, or this.
constexpr char kJob = 0;
constexpr int kEndingSignals[] = {SIGTERM, SIGINT, SIGHUP};
constexpr unsigned kEndsWithin = 5; // seconds, for a main thread that waits for a disk, a terminal or a bus

// What a signal handler may touch.
std::atomic<int> signalPipe = -1;
std::atomic<int> endingSignal = 0; // the first one
std::atomic<void (*)()> emergencyCleanup = nullptr;

// A full pipe wakes the loop all the same.
void writeByte(int pipe, char byte)
{
    while (write(pipe, &byte, 1) < 0 && errno == EINTR)
        ;
}

void onSignal(int signal)
{
    const int before = errno;
    writeByte(signalPipe, static_cast<char>(signal));
    errno = before;
}

void endAtOnce(int)
{
    if (const auto cleanUp = emergencyCleanup.load(); cleanUp != nullptr)
        cleanUp();
    _exit(128 + endingSignal);
}

void onEndingSignal(int signal)
{
    if (int none = 0; !endingSignal.compare_exchange_strong(none, signal))
        endAtOnce(signal);
    alarm(kEndsWithin);
    onSignal(signal);
}

bool isEnding(int signal) { return std::ranges::find(kEndingSignals, signal) != std::end(kEndingSignals); }

void handle(int signal, void (*handler)(int))
{
    struct sigaction action {};
    action.sa_handler = handler;
    action.sa_flags = SA_RESTART;
    sigaction(signal, &action, nullptr);
}

// Whoever has started the program may have blocked them.
void unblockSignals()
{
    sigset_t needed;
    sigemptyset(&needed);
    sigaddset(&needed, SIGALRM);
    for (const int signal : kEndingSignals)
        sigaddset(&needed, signal);
    pthread_sigmask(SIG_UNBLOCK, &needed, nullptr);
}

void makePrivate(int descriptor)
{
    fcntl(descriptor, F_SETFD, FD_CLOEXEC);
    fcntl(descriptor, F_SETFL, O_NONBLOCK);
}

} // namespace

JobQueue::JobQueue()
{
    int ends[2];
    if (pipe(ends) != 0) {
        Lct::printSystemError("Kest Settings cannot start");
        std::exit(1); // the loop cannot run, and nothing has been started yet
    }
    wakeUpRead = ends[0];
    wakeUpWrite = ends[1];
    makePrivate(wakeUpRead);
    makePrivate(wakeUpWrite);

    signalPipe = wakeUpWrite;
    endingSignal = 0;
    alarm(0);
    handle(SIGALRM, endAtOnce);
    for (const int signal : kEndingSignals)
        handle(signal, onEndingSignal);
    unblockSignals();
    handle(SIGPIPE, SIG_IGN); // a reader of our output that goes away is no reason to end
}

JobQueue::~JobQueue()
{
    for (const auto& [signal, arrived] : signals)
        handle(signal, SIG_DFL);
    if (endingSignal == 0) { // else the five seconds are for all that is left to do, too
        for (const int signal : kEndingSignals)
            handle(signal, SIG_DFL);
        handle(SIGALRM, SIG_DFL);
        emergencyCleanup = nullptr;
    }
    signalPipe = -1;
    close(wakeUpRead);
    close(wakeUpWrite);
}

void JobQueue::post(std::function<void()> job)
{
    const MutexLock lock(jobsMutex);
    jobs.push_back(std::move(job));
    if (jobs.size() > 1)
        return; // somebody has woken the loop for these
    writeByte(wakeUpWrite, kJob);
}

void JobQueue::watchSignal(int signal, std::function<void()> arrived)
{
    signals[signal] = std::move(arrived);
    handle(signal, onSignal);
}

void JobQueue::setEmergencyCleanup(void (*cleanup)()) { emergencyCleanup = cleanup; }

void JobQueue::dispatchWakeUps()
{
    drainWakeUps();
    runJobs();
}

// An ending signal goes before all others, so that nothing is begun at the end.
void JobQueue::drainWakeUps()
{
    char bytes[64];
    ssize_t count = 0;
    std::set<int> arrived;
    while ((count = read(wakeUpRead, bytes, sizeof bytes)) > 0)
        arrived.insert(bytes, bytes + count);
    quitting = quitting || std::ranges::any_of(arrived, isEnding);
    for (const int signal : arrived)
        if (const auto watch = signals.find(signal); watch != signals.end() && !quitting)
            watch->second();
}

void JobQueue::runJobs()
{
    const auto takeJobs = [this] {
        const MutexLock lock(jobsMutex);
        return std::exchange(jobs, {});
    };
    for (const auto& job : takeJobs())
        if (!quitting)
            job();
}

} // namespace Kest::Posix
