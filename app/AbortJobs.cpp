#include "app/AbortJobs.h"

#include "backend/Mutex.h"
#include "backend/SignalsBlocked.h"

#include <algorithm>
#include <condition_variable>
#include <system_error>
#include <thread>
#include <utility>

namespace Kest::App {
namespace {

using Clock = std::chrono::steady_clock;
using Settings::ProcessIdentity;
using namespace std::chrono_literals;

constexpr auto kTimeToFinish = 1000ms;
constexpr auto kTimeToStop = 200ms;

void log(const ProcessIdentity& process, const std::string& text)
{
    Lct::LogAnswer(Lct::eLogError, "abort", "encoding %d: %s", process.pid, text.c_str());
}

} // namespace

struct AbortJobs::Shared {
    Shared(FrontEnd& mainLoop, AbortJobs& jobs) : frontEnd(&mainLoop), owner(&jobs) {}

    /// Waits at most `timeout` until all aborts have ended. Returns false on timeout.
    bool waitForAll(std::chrono::milliseconds timeout)
    {
        const auto end = Clock::now() + timeout;
        const MutexLock lock(mutex);
        while (!active.empty())
            if (ended.wait_until(mutex, end) == std::cv_status::timeout)
                return active.empty();
        return true;
    }

    std::atomic<bool> stop = false;
    Mutex mutex;
    std::condition_variable_any ended;
    std::vector<ProcessIdentity> active KEST_GUARDED_BY(mutex); // aborts whose threads run
    FrontEnd* frontEnd KEST_GUARDED_BY(mutex);                  // null after `end`
    AbortJobs* owner;                                           // the same; main thread only
};

AbortJobs::AbortJobs(FrontEnd& mainLoop, Finished whenFinished, Abort abort)
    : finished(std::move(whenFinished)), abortOne(std::move(abort)),
      shared(std::make_shared<Shared>(mainLoop, *this))
{}

void AbortJobs::end()
{
    if (!shared->waitForAll(kTimeToFinish)) {
        shared->stop = true;
        shared->waitForAll(kTimeToStop);
    }
    shared->owner = nullptr;
    const MutexLock lock(shared->mutex);
    shared->frontEnd = nullptr;
    for (const auto& process : std::exchange(shared->active, {}))
        log(process, "not complete when the agent ended");
}

std::string AbortJobs::start(const AbortRequest& request)
{
    if (isRunning(request.process))
        return {};
    if (running.size() >= kMaxRunning)
        return std::to_string(kMaxRunning) + " aborts are running; try again when one has ended";
    running.push_back(request.process);
    {
        const MutexLock lock(shared->mutex);
        shared->active.push_back(request.process);
    }
    try {
        const SignalsBlocked blocked;
        std::thread(run, shared, abortOne, request).detach();
        return {};
    } catch (const std::system_error& failure) {
        running.pop_back();
        const MutexLock lock(shared->mutex);
        shared->active.pop_back();
        return std::string("cannot start a thread: ") + failure.what();
    }
}

bool AbortJobs::isRunning(const ProcessIdentity& process) const
{
    return std::ranges::find(running, process) != running.end();
}

void AbortJobs::run(const std::shared_ptr<Shared>& shared, const Abort& abortOne, const AbortRequest& request)
{
    const auto failure = abortOne(request, shared->stop);
    const MutexLock lock(shared->mutex);
    if (shared->frontEnd == nullptr)
        return; // logged as not complete
    if (!failure.empty())
        log(request.process, failure);
    shared->active.erase(std::ranges::find(shared->active, request.process));
    shared->ended.notify_all();
    shared->frontEnd->post([shared, process = request.process, failure] {
        if (shared->owner != nullptr)
            shared->owner->finish(process, failure);
    });
}

void AbortJobs::finish(const ProcessIdentity& process, const std::string& failure)
{
    std::erase(running, process);
    finished(process, failure);
}

} // namespace Kest::App
