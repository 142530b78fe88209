// The named pipe through which encoders report: keeps it at its path, and reads it.
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

/// Only the reader thread calls `make`, `read` and `remove`; all other functions may be called on any thread.
class ProgressPipeReader {
public:
    explicit ProgressPipeReader(const char* pathOfPipe) : path(pathOfPipe) {}
    ProgressPipeReader(const ProgressPipeReader&) = delete;
    ProgressPipeReader& operator=(const ProgressPipeReader&) = delete;

    /// Returns whether the pipe must be created: at the start, and from a request by `check` until `make`.
    bool isMakeRequested() const { return isRequested; }

    /// Removes anything else at the path, creates the pipe and opens it. Prints the path once, between the
    /// two. Returns false on failure, and prints the first of consecutive failures to create it. Earlier
    /// pipes, at most 64, are read until the last encoder closes them. Does not follow links.
    bool make();

    /// Requests a new pipe if the pipe is not at its path, and interrupts `read`. If another process reads a
    /// pipe there, PipeRivalry delays the request. Called once a second.
    void check();

    /// Returns how often in a row another process replaced the pipe, including the current loss.
    int lossesToAnother() const;

    /// Interrupts a `read` that waits, and writes the line "bla" into the pipe.
    void wake();

    /// Returns the descriptor that is read; -1 before the pipe is created.
    int descriptor() const { return pipes.empty() ? -1 : pipes.back()->reader; }

    /// Bytes of one pipe, and the line that they continue; both valid until the next call, and empty after a
    /// wake-up.
    struct Piece {
        Text::LineSplitter* lines = nullptr;
        std::string_view bytes;
        bool hasFailed = false; // permanently
    };
    /// Waits for bytes or a wake-up, also while there is no pipe at the path.
    Piece read();

    /// Closes the pipe, and removes it unless something else is at its path.
    void remove();

private:
    // Has both ends open, so that a pipe without encoders has no end of file. The writing end of an earlier
    // pipe is closed: its end of file shows that the last encoder has closed it.
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
    std::size_t turn = 0;
    std::array<char, 4096> buffer{}; // PIPE_BUF: a whole write of an encoder

    const WakeUp wakeUp;
    std::atomic<bool> isRequested = true; // until `make` ends, during which `check` must not test the path

    mutable Mutex mutex;
    const Pipe* current KEST_GUARDED_BY(mutex) = nullptr; // the last of `pipes`
    PipeRivalry rivalry KEST_GUARDED_BY(mutex);
    bool isEnded KEST_GUARDED_BY(mutex) = false; // the reader has stopped
};

} // namespace Kest::Settings
