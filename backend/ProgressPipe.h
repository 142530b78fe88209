// The named pipe in which encoders report: its place in the file system and what arrives in it.
#pragma once

#include "backend/Guarded.h"
#include "backend/LineSplitter.h"

#include <array>
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

    /// Makes the pipe and opens it; whatever else is at the path is removed, links are not followed. False
    /// when that cannot be done, with a line on standard error at the first of such failures in a row. An
    /// encoder that has an earlier pipe open is heard until it closes it.
    bool make();

    /// Whether there is no pipe to be found at the path, as far as is known: not made yet, or `look` has
    /// missed it.
    bool isLost() const;

    /// Looks whether the pipe that was made is still the one at the path; wakes the reader when it is not.
    void look();

    /// Ends a `read` that waits.
    void wake();

    /// The descriptor that is read, -1 before the pipe is made.
    int descriptor() const { return pipes.empty() ? -1 : pipes.back()->reader; }

    /// Bytes of one pipe, and the line that they go on with; both valid until the next call. No bytes when
    /// there were none yet.
    struct Piece {
        LineSplitter* lines = nullptr; // null when reading has failed for good
        std::string_view bytes;
    };
    /// Waits for bytes.
    Piece read();

    /// Closes the pipe and removes it, unless something else has taken its place.
    void remove();

private:
    // Both ends, so that encoders may come and go without an end of file. Of a pipe that is at the path no
    // more the writing end is closed: its end of file comes when the last encoder has gone.
    struct Pipe {
        ~Pipe();
        int reader = -1;
        int writer = -1;
        dev_t device = 0;
        ino_t inode = 0;
        LineSplitter lines;
    };

    bool create();
    std::unique_ptr<Pipe> open() const;
    bool isAtPath(const Pipe& pipe) const;
    void waitForBytes() const;

    const char* const path;
    bool failureIsTold = false;
    std::vector<std::unique_ptr<Pipe>> pipes; // the current one last
    std::size_t turn = 0;
    std::array<char, 1024> buffer{};

    mutable Mutex mutex;
    const Pipe* current KEST_GUARDED_BY(mutex) = nullptr; // the last of `pipes`
    bool lost KEST_GUARDED_BY(mutex) = true;
};

} // namespace Kest::Settings
