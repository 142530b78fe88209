// The thread that reads the encoders' lines, and the table of what they reported.
#pragma once

#include "backend/EncodingTable.h"
#include "backend/Guarded.h"
#include "backend/ProgressPipe.h"

#include <atomic>
#include <chrono>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

namespace Kest::Settings {

/// `start` and `stop` belong to the owner; all else may be called on any thread.
class EncodingReader {
public:
    /// Called on the reader's thread, without a lock, after the record has changed: `number` is a percentage,
    /// or -1 for a failure, `name` is null without a path and valid during the call.
    using Report = std::function<void(std::int32_t number, std::int32_t pid, const char* name)>;

    EncodingReader(std::string pathOfPipe, Report onReport);
    EncodingReader(const EncodingReader&) = delete;
    EncodingReader& operator=(const EncodingReader&) = delete;

    /// Returns 0, or the system's error number when it refuses the thread.
    int start();
    /// Ends and joins the thread, if there is one, and removes the pipe.
    void stop();

    /// Requests to make the pipe again when it is not at its path. Called once a second.
    void checkPipe() { progressPipe.check(); }

    /// Calls `query` with the table, locked, and returns its result.
    template <typename Query>
    auto query(Query&& query) const
    {
        const MutexLock lock(encodingMutex);
        return query(encodingStatuses);
    }

private:
    void namedPipeThreadloop();
    void restorePipe();
    void readLines(const ProgressPipe::Piece& piece);
    void parse_1line(std::string_view line);
    void dropLine(std::string_view beginning);
    void take(const EncodingLine& line);
    void identifyEncoder(std::int32_t pid);

    const std::string fifoPath;
    const Report report;
    std::atomic<std::int32_t> stopRequests = 0;
    ProgressPipe progressPipe{fifoPath.c_str()};
    std::thread pipeThread;

    mutable Mutex encodingMutex;
    EncodingTable encodingStatuses KEST_GUARDED_BY(encodingMutex);

    // Reader thread only: the numbers whose processes were identified just now.
    std::vector<std::int32_t> identified;
    std::chrono::steady_clock::time_point identifiedSince;
};

} // namespace Kest::Settings
