// Reads the encoders' lines on its own thread and keeps a table of the encodings.
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

/// Only the owner calls `start` and `stop`; all other functions may be called on any thread.
class EncodingReader {
public:
    /// Called on the reader's thread, without a lock, after a record has changed. `number` is a percentage,
    /// or -1 for a failure; `name` is null if there is no path, and valid during the call.
    using Report = std::function<void(std::int32_t number, std::int32_t pid, const char* name)>;

    EncodingReader(std::string pathOfPipe, Report onReport);
    EncodingReader(const EncodingReader&) = delete;
    EncodingReader& operator=(const EncodingReader&) = delete;

    /// Starts the thread. Returns 0, or the system's error number if it refuses one.
    int start();
    /// Stops and joins the thread, if there is one, and removes the pipe.
    void stop();

    /// Requests a new pipe if the pipe is not at its path. Called once a second.
    void checkPipe() { progressPipe.check(); }

    /// Calls `query` with the locked table, and returns its result.
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

    // Reader thread only: the process ids that were identified in the last `kIdentifiedFor`.
    std::vector<std::int32_t> identified;
    std::chrono::steady_clock::time_point identifiedSince;
};

} // namespace Kest::Settings
