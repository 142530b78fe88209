// The named pipe in which encoders report: its path in the file system and what arrives in it.
#pragma once

#include "backend/Guarded.h"
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

/// Made by the reader thread, which alone calls `make`, `read` and `remove`; the others may be called on any
/// thread.
class ProgressPipe {
public:
    explicit ProgressPipe(const char* pathOfPipe) : path(pathOfPipe) {}
    ProgressPipe(const ProgressPipe&) = delete;
    ProgressPipe& operator=(const ProgressPipe&) = delete;

    /// Returns whether the pipe has to be made: at the start, and from a request by `check` until `make`.
    bool isMakeRequested() const { return isRequested; }

    /// Creates the pipe and opens it; whatever else is at the path is removed, links are not followed. Prints
    /// the path between the two for the first time. Returns false when one of them fails; the first of such
    /// failures in a row to create it is printed to standard error. Earlier pipes are read until the last
    /// encoder closes them, 64 of them at most.
    bool make();

    /// Requests to make the pipe again when it is not at the path, and interrupts `read`. A pipe that another
    /// process reads there delays that; see PipeRivalry. Called once a second.
    void check();

    /// How often in a row another process replaced the pipe, its current loss included.
    int lossesToAnother() const;

    /// Ends a `read` that waits, and writes the line "bla" into the pipe.
    void wake();

    /// The descriptor that is read, -1 before the pipe is made.
    int descriptor() const { return pipes.empty() ? -1 : pipes.back()->reader; }

    /// Bytes of one pipe, and the line that they continue; both valid until the next call. Without bytes and
    /// line after a wake-up.
    struct Piece {
        Text::LineSplitter* lines = nullptr;
        std::string_view bytes;
        bool hasFailed = false; // for good
    };
    /// Waits for bytes or a wake-up. Reads also while there is no pipe at the path.
    Piece read();

    /// Closes the pipe and removes it, unless something else is at its path.
    void remove();

private:
    // Both ends, so that a pipe without encoders has no end of file. The writing end of an earlier pipe is
    // closed: its end of file is the end of its last encoder.
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
    void keepEarlierPipes();
    bool isAtPath(const Pipe& pipe) const;
    void waitForBytes();

    const char* const path;
    bool isAnnounced = false;
    bool failureIsTold = false;
    bool overflowIsLogged = false;
    std::vector<std::unique_ptr<Pipe>> pipes; // the current one last
    std::size_t turn = 0;
    std::array<char, 4096> buffer{}; // a whole write of an encoder at once

    const WakeUp wakeUp;
    std::atomic<bool> isRequested = true; // ends with `make`, during which `check` must not judge the path

    mutable Mutex mutex;
    const Pipe* current KEST_GUARDED_BY(mutex) = nullptr; // the last of `pipes`
    PipeRivalry rivalry KEST_GUARDED_BY(mutex);
    bool isEnded KEST_GUARDED_BY(mutex) = false; // nobody reads any more
};

} // namespace Kest::Settings
