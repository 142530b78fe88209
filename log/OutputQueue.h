// A queue of text for one output, written by a separate thread.
#pragma once

#include <array>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <mutex>
#include <string_view>

namespace Lct {

/// Keeps up to 64 KB of text for an output that may be slow or stuck. While there is no room, callers wait,
/// but in all at most half a second until the output has taken everything. Text that does not fit after that
/// is dropped, and one line later says how much. Lives until the process ends: the thread is never joined.
/// Any thread.
class OutputQueue {
public:
    /// Writes `text`, at most 4096 bytes that end with a whole line where there is one. May block.
    using Write = void(std::string_view text);

    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init): the buffer's memory is used as it is filled
    explicit OutputQueue(Write* toOutput) : write(toOutput) {}
    OutputQueue(const OutputQueue&) = delete;
    OutputQueue& operator=(const OutputQueue&) = delete;

    /// Adds a text whole, or drops it whole. Starts the thread at the first call; where the system refuses
    /// one, the caller writes.
    void add(std::string_view text);

    /// Waits until everything added so far is written, at most `milliseconds`. Returns whether it is.
    bool flush(int milliseconds);

private:
    static constexpr std::chrono::milliseconds kMaxWait{500};

    bool startThread();
    bool hasRoom(std::size_t bytes) const;
    void waitForRoom(std::unique_lock<std::mutex>& lock, std::size_t bytes);
    static void* runThread(void* queue);
    void run();
    void append(std::string_view text);
    std::size_t takePiece(char* piece);
    void reportDropped();

    Write* const write;
    std::mutex mutex;
    std::condition_variable added;
    std::condition_variable written;
    std::array<char, 65536> buffer; // the waiting text is from `begin` to `end`
    std::size_t begin = 0;
    std::size_t end = 0;
    std::size_t droppedTexts = 0;
    std::chrono::steady_clock::duration patience = kMaxWait; // of callers, until the buffer is empty
    bool isWriting = false;
    bool hasThread = false;
};

// The queues behind the printing functions and the logger.
OutputQueue& standardOutput();
OutputQueue& standardError();
OutputQueue& systemLog(); // each text is whole lines

/// Writes all of `text` to a descriptor, waiting where it must. Gives up when the descriptor fails.
void writeAll(int descriptor, std::string_view text);

} // namespace Lct
