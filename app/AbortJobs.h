// Runs aborts of encodings on separate threads, so that a slow disk does not block the main loop.
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

/// Main thread only. `mainLoop` must outlive this object.
class AbortJobs {
public:
    static constexpr std::size_t kMaxRunning = 16; // at the same time

    /// Performs one abort. The parameters and the result are those of `abortEncoder`. Called on a separate
    /// thread.
    using Abort = std::function<std::string(const AbortRequest&, const std::atomic<bool>& stop)>;
    /// Called on the main thread after the abort of the encoder `process` has ended. `failure` is the result
    /// of `Abort`: empty, or the reason why the abort is not complete.
    using Finished =
        std::function<void(const Settings::ProcessIdentity& process, const std::string& failure)>;

    AbortJobs(FrontEnd& mainLoop, Finished whenFinished, Abort abortOne = abortEncoder);
    ~AbortJobs() { end(); }
    AbortJobs(const AbortJobs&) = delete;
    AbortJobs& operator=(const AbortJobs&) = delete;

    /// Waits up to 1 s until all aborts have ended. If some still run, sets their `stop` to true and waits up
    /// to 200 ms more. Then abandons the aborts that still run, whose threads continue, and logs one line for
    /// each. From the call of `end` on, `Finished` is not called, even for aborts that end during the wait.
    /// `start` must not be called after `end`.
    void end();

    /// Starts an abort. Returns an empty text if the abort was started, or if an abort of the same process is
    /// already running. Otherwise returns why none was started: `kMaxRunning` aborts are running, or the
    /// system cannot start a thread. If a started abort fails later, one line is logged, and `Finished` gets
    /// the reason.
    std::string start(const AbortRequest& request);
    /// Returns true from the start of the abort of `process` until just before `Finished` is called for that
    /// process.
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
