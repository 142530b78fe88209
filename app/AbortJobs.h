// Aborts that run beside the main loop, so that a slow disk blocks nothing else.
#pragma once

#include "app/EncoderAbort.h"
#include "app/FrontEnd.h"

#include <chrono>
#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace Kest::App {

/// Runs each abort on a separate thread. Main thread only; the front end outlives it.
class AbortJobs {
public:
    static constexpr std::size_t kMaxRunning = 16;

    using Abort = std::function<std::string(const AbortOrder&, const std::atomic<bool>& stop)>;
    /// Called on the main thread when an abort has ended; `failure` is empty when it is complete.
    using Finished =
        std::function<void(const Settings::ProcessIdentity& process, const std::string& failure)>;

    AbortJobs(FrontEnd& mainLoop, Finished whenFinished, Abort abortOne = abortEncoder);
    ~AbortJobs() { end(); }
    AbortJobs(const AbortJobs&) = delete;
    AbortJobs& operator=(const AbortJobs&) = delete;

    /// Gives running aborts one second to end, then requests their stop and waits another 200 ms. What still
    /// blocks then is left behind, and is one log line. No result is handled any more. Call `start` no more.
    void end();

    /// Starts an abort, unless one of the same process runs. Returns an empty text, or why it does not start.
    /// A failure of the abort itself is one log line.
    std::string start(const AbortOrder& order);
    /// Whether an abort of the process was started and its end has not been handled yet.
    bool isRunning(const Settings::ProcessIdentity& process) const;

private:
    struct Shared;
    static void run(const std::shared_ptr<Shared>& shared, const Abort& abortOne, const AbortOrder& order);
    void finish(const Settings::ProcessIdentity& process, const std::string& failure);

    const Finished finished;
    const Abort abortOne;
    const std::shared_ptr<Shared> shared; // with the threads, which may outlive this object
    std::vector<Settings::ProcessIdentity> running;
};

} // namespace Kest::App
