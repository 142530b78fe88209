// Creates and reads the named pipe into which encoders write their reports.
#pragma once

#include "backend/Mutex.h"
#include "backend/PipeRivalry.h"
#include "backend/WakeUp.h"
#include "text/LineSplitter.h"

#include <array>
#include <atomic>
#include <memory>
#include <string_view>
#include <sys/types.h>
#include <vector>

namespace Kest::Settings {

/// Only one thread, the pipe thread, may call `make`, `read`, `remove` and `descriptor`. Any thread may call
/// the other functions.
class ProgressPipeReader {
public:
    /// `pathOfPipe` must remain valid while this object exists.
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init): the buffer's memory is used as it is filled
    explicit ProgressPipeReader(const char* pathOfPipe) : path(pathOfPipe) {}
    ProgressPipeReader(const ProgressPipeReader&) = delete;
    ProgressPipeReader& operator=(const ProgressPipeReader&) = delete;

    /// Returns whether `make` must be called: before its first call, and after a request by `check`.
    bool isMakeRequested() const { return isRequested; }

    /// Creates a new pipe at the path and opens it. First removes any file at the path, even the pipe of
    /// another process; removes a link itself, not its target. Returns false if it cannot create or open the
    /// pipe; then `check` requests another call. Prints the path when it creates the first pipe. Prints an
    /// error line when it removes a file or cannot create the pipe. Prints no error line if the previous call
    /// failed or `lossesToAnother` is more than 1.
    /// An earlier pipe is read until the last encoder closes it. If more than 64 earlier pipes would be open,
    /// closes the oldest one; if successive calls do this, only the first one logs it.
    bool make();

    /// If no pipe of this object is at the path, requests a call of `make` and interrupts `read`. Does
    /// nothing if `PipeRivalry::mayReplace` returns false. Call this function once a second.
    void check();

    /// Returns how many times in succession another process has replaced the pipe: see `PipeRivalry::losses`.
    int lossesToAnother() const;

    /// Makes a waiting `read` return; if none waits, the next wait ends at once. Also writes the line "bla"
    /// into the pipe if there is one; this line has no effect.
    void wake();

    /// Returns the reading descriptor of the newest pipe; -1 if there is none.
    int descriptor() const { return pipes.empty() ? -1 : pipes.back()->reader; }

    /// The result of `read`: bytes of one pipe, and the splitter to feed with all bytes of this pipe. `bytes`
    /// is valid until the next call of `read`, `lines` until the next call of `read`, `make` or `remove`.
    /// `lines` is null if there are no bytes.
    struct Piece {
        Text::LineSplitter* lines = nullptr;
        std::string_view bytes;
        bool hasFailed = false; // reading has failed: stop calling `read`
    };
    /// Returns the next bytes of the current pipe or an earlier one. If no pipe has bytes, waits until bytes
    /// arrive, or until `check` or `wake` interrupts the wait. Then returns no bytes; the next call returns
    /// the bytes that have arrived.
    Piece read();

    /// Closes all pipes. Removes the current pipe if it is still at its path. Afterwards `check` does
    /// nothing.
    void remove();

private:
    // Both ends of the current pipe are open, so that there is no end of file while no encoder has the pipe
    // open. After the pipe was replaced, its writing end is closed. End of file then means that the last
    // encoder has closed the pipe.
    struct Pipe {
        ~Pipe();
        int reader = -1;
        int writer = -1;
        dev_t device = 0;
        ino_t inode = 0;
        Text::LineSplitter lines;
    };

    bool create(bool isSilent);
    std::unique_ptr<Pipe> open() const;
    void retainCurrentPipe();
    bool isAtPath(const Pipe& pipe) const;
    void waitForBytes();

    const char* const path;
    bool isAnnounced = false;
    bool isFailurePrinted = false;
    bool overflowIsLogged = false;
    std::vector<std::unique_ptr<Pipe>> pipes; // the current one last
    std::size_t turn = 0;                     // index of the pipe that was read last
    std::array<char, 65536> buffer;           // the capacity of a pipe on Linux

    const WakeUp wakeUp;
    std::atomic<bool> isRequested = true; // true until `make` ends; `check` does not test the path meanwhile

    mutable Mutex mutex;
    const Pipe* current KEST_GUARDED_BY(mutex) = nullptr; // the last of `pipes`
    PipeRivalry rivalry KEST_GUARDED_BY(mutex);
    bool isEnded KEST_GUARDED_BY(mutex) = false; // `remove` was called
};

} // namespace Kest::Settings
