// Reads the lines of the encoders on a separate thread, and keeps a table of the encodings.
#pragma once

#include "backend/EncodingTable.h"
#include "backend/Mutex.h"
#include "backend/ProgressPipeReader.h"

#include <atomic>
#include <chrono>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

namespace Kest::Settings {

/// The thread is called the pipe thread. Only the owner calls `start` and `stop`; all other functions may be
/// called on any thread.
class EncodingReader {
public:
    /// Called on the pipe thread, without a lock, after an encoder has written a percentage or an error.
    /// `number` is the percentage, or -1 for an error. `name` is the name of the output file, or null if its
    /// path is unknown. `name` is valid during the call only.
    using Report = std::function<void(std::int32_t number, std::int32_t pid, const char* name)>;

    EncodingReader(std::string pathOfPipe, Report onReport);
    EncodingReader(const EncodingReader&) = delete;
    EncodingReader& operator=(const EncodingReader&) = delete;

    /// Starts the thread, which creates the pipe and reads it. Returns 0, or the system's error number if the
    /// system refuses a thread.
    int start();
    /// Makes the thread remove the pipe and end, and waits until the thread has ended. Does nothing if the
    /// thread was not started.
    void stop();

    /// If the pipe is no longer at its path, requests that the thread create a new pipe. The owner calls this
    /// function once a second.
    void checkPipe() { progressPipe.check(); }

    /// Calls `query` with the table and returns the result of `query`. The table is locked during the call.
    /// The result must not refer to the table.
    template <typename Query>
    auto query(Query&& query) const
    {
        const MutexLock lock(encodingMutex);
        return query(encodingStatuses);
    }

private:
    void namedPipeThreadloop();
    void restorePipe();
    void readLines(const ProgressPipeReader::Piece& piece);
    void parse_1line(std::string_view line);
    void dropLine(std::string_view beginning);
    void take(const EncodingLine& line);
    void identifyEncoder(std::int32_t pid);

    const std::string fifoPath;
    const Report report;
    std::atomic<std::int32_t> stopRequests = 0;
    ProgressPipeReader progressPipe{fifoPath.c_str()};
    std::thread pipeThread;

    mutable Mutex encodingMutex;
    EncodingTable encodingStatuses KEST_GUARDED_BY(encodingMutex);

    // Used by the pipe thread only: the process ids that were identified within about the last millisecond.
    std::vector<std::int32_t> identified;
    std::chrono::steady_clock::time_point identifiedSince;
};

} // namespace Kest::Settings
