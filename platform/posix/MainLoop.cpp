#include "platform/posix/MainLoop.h"

#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <poll.h>
#include <unistd.h>
#include <utility>

namespace Kest::Posix {
namespace {

constexpr char kJob = 'j';
constexpr char kSignal = 's';
constexpr int kEndingSignals[] = {SIGTERM, SIGINT, SIGHUP};

// What a signal handler may touch.
std::atomic<int> signalPipe = -1;
std::atomic<bool> signalSeen = false;

void onEndingSignal(int signal)
{
    if (signalSeen.exchange(true))
        _exit(128 + signal);
    const int before = errno;
    [[maybe_unused]] const auto written = write(signalPipe, &kSignal, 1);
    errno = before;
}

void handle(int signal, void (*handler)(int))
{
    struct sigaction action {};
    action.sa_handler = handler;
    action.sa_flags = SA_RESTART;
    sigaction(signal, &action, nullptr);
}

void makePrivate(int descriptor)
{
    fcntl(descriptor, F_SETFD, FD_CLOEXEC);
    fcntl(descriptor, F_SETFL, O_NONBLOCK);
}

} // namespace

MainLoop::MainLoop()
{
    int ends[2];
    if (pipe(ends) != 0)
        std::abort(); // no descriptors at the very start: there is nothing to run on
    wakeUpRead = ends[0];
    wakeUpWrite = ends[1];
    makePrivate(wakeUpRead);
    makePrivate(wakeUpWrite);

    signalPipe = wakeUpWrite;
    signalSeen = false;
    for (const int signal : kEndingSignals)
        handle(signal, onEndingSignal);
    handle(SIGPIPE, SIG_IGN); // a reader of our output that goes away is no reason to end
}

MainLoop::~MainLoop()
{
    for (const int signal : kEndingSignals)
        handle(signal, SIG_DFL);
    close(wakeUpRead);
    close(wakeUpWrite);
}

void MainLoop::post(std::function<void()> job)
{
    const MutexLock lock(jobsMutex);
    jobs.push_back(std::move(job));
    if (jobs.size() > 1)
        return; // somebody has woken the loop for these
    [[maybe_unused]] const auto written = write(wakeUpWrite, &kJob, 1);
}

void MainLoop::watchInput(int descriptor, std::function<void()> readable)
{
    input = descriptor;
    inputReadable = std::move(readable);
}

void MainLoop::run()
{
    while (!quitting) {
        pollfd watched[] = {{wakeUpRead, POLLIN, 0}, {input, POLLIN, 0}}; // poll skips a descriptor of -1
        if (poll(watched, 2, -1) < 0)
            continue;
        if (watched[0].revents != 0)
            dispatchWakeUps();
        if (watched[1].revents != 0 && !quitting)
            inputReadable();
    }
}

void MainLoop::dispatchWakeUps()
{
    drainWakeUps();
    runJobs();
}

void MainLoop::drainWakeUps()
{
    char bytes[64];
    ssize_t count = 0;
    while ((count = read(wakeUpRead, bytes, sizeof bytes)) > 0)
        for (ssize_t i = 0; i < count; ++i)
            quitting = quitting || bytes[i] == kSignal;
}

void MainLoop::runJobs()
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
