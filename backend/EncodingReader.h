// Reads the lines that encoders write into a named pipe, on a separate thread, and keeps a table of the
// encodings.
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

/// The separate thread is called the pipe thread. Only the owner calls `start` and `stop`, each at most once;
/// any thread may call the other functions. After `start`, call `stop` before destroying the object.
class EncodingReader {
public:
    /// Called on the pipe thread, without a lock, after an encoder has written a percentage or an error.
    /// `number` is the percentage, or -1 for an error. `pid` is the process id that the encoder has written.
    /// `name` is the name of the output file without its last extension, or null if the path of the file is
    /// unknown. `name` is valid during the call only.
    using Report = std::function<void(std::int32_t number, std::int32_t pid, const char* name)>;

    EncodingReader(std::string pathOfPipe, Report onReport);
    EncodingReader(const EncodingReader&) = delete;
    EncodingReader& operator=(const EncodingReader&) = delete;

    /// Starts the pipe thread, which creates the pipe and reads it. Returns 0; the system's error number if
    /// the system refuses a thread. A failure to create the pipe is not an error here: see `checkPipe`.
    int start();
    /// Makes the pipe thread remove the pipe and end, and waits until it has ended. Does nothing if the
    /// thread was not started.
    void stop();

    /// If there is no pipe of this agent at the path, makes the pipe thread create a new one. Exception: if
    /// another process reads a pipe at the path, creates the new one only when that process has stopped
    /// reading, or after a delay of up to 60 seconds (see `PipeRivalry`). Call this function once a second.
    void checkPipe() { progressPipe.check(); }

    /// Calls `query` with the table and returns its result. The result must not refer to the table. The table
    /// is locked during the call.
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
