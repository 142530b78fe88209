// Runs aborts on separate threads, so that a slow disk does not block the main loop.
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

    using Abort = std::function<std::string(const AbortRequest&, const std::atomic<bool>& stop)>;
    /// Called on the main thread when an abort has ended; `failure` is empty when it is complete.
    using Finished =
        std::function<void(const Settings::ProcessIdentity& process, const std::string& failure)>;

    AbortJobs(FrontEnd& mainLoop, Finished whenFinished, Abort abortOne = abortEncoder);
    ~AbortJobs() { end(); }
    AbortJobs(const AbortJobs&) = delete;
    AbortJobs& operator=(const AbortJobs&) = delete;

    /// Waits up to 1 s for running aborts, then requests them to stop and waits up to 200 ms more. Logs one
    /// line for each abort that still runs and abandons it. Later no result is handled, and `start` is not
    /// allowed.
    void end();

    /// Starts an abort unless one of the same process is running. Returns an empty text, or the reason for
    /// not starting. A failure of the abort itself is logged in one line.
    std::string start(const AbortRequest& request);
    /// Returns whether an abort of the process was started and its end has not been handled yet.
    bool isRunning(const Settings::ProcessIdentity& process) const;

private:
    struct Shared;
    static void run(const std::shared_ptr<Shared>& shared, const Abort& abortOne,
                    const AbortRequest& request);
    void finish(const Settings::ProcessIdentity& process, const std::string& failure);

    const Finished finished;
    const Abort abortOne;
    const std::shared_ptr<Shared> shared; // shared with the threads, which may outlive this object
    std::vector<Settings::ProcessIdentity> running;
};

} // namespace Kest::App
