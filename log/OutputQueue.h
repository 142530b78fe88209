// A queue of text for one output, written by a separate thread.
#pragma once

#include <array>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <mutex>
#include <string_view>

namespace Lct {

/// Buffers up to 64 KB of text for an output that may be slow or stuck. When the buffer is full, callers
/// wait, together at most half a second until the buffer is empty again. Then text that does not fit is
/// dropped, and a later line reports how much. Never destroyed: the thread is not joined. Any thread.
class OutputQueue {
public:
    /// Writes `text`: at most 4096 bytes, which end with a whole line if they contain one. May block.
    using Write = void(std::string_view text);

    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init): the buffer's memory is used as it is filled
    explicit OutputQueue(Write* toOutput) : write(toOutput) {}
    OutputQueue(const OutputQueue&) = delete;
    OutputQueue& operator=(const OutputQueue&) = delete;

    /// Adds or drops the whole text. Starts the thread at the first call; if the system refuses one, the
    /// caller writes.
    void add(std::string_view text);

    /// Waits until all added text is written, at most `milliseconds`. Returns false on timeout.
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
    std::chrono::steady_clock::duration remainingWait = kMaxWait; // callers' remaining time until it is empty
    bool isWriting = false;
    bool hasThread = false;
};

// The queues behind the printing functions and the logger.
OutputQueue& standardOutput();
OutputQueue& standardError();
OutputQueue& systemLog(); // each text is whole lines

/// Writes all of `text` to a descriptor, and waits while it is full. Stops when the descriptor fails.
void writeAll(int descriptor, std::string_view text);

} // namespace Lct
