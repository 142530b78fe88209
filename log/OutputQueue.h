// A queue of text for one output, written by a separate thread.
#pragma once

#include <array>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <mutex>
#include <string_view>

namespace Lct {

/// Buffers up to 64 KB of text for an output that may be slow or blocked, and writes the text on a separate
/// thread. If a text does not fit into the buffer, `add` waits. The waits of all calls last at most half a
/// second in total; this total is reset when the buffer is empty. When the half second is used up, `add`
/// drops a text that does not fit, and then drops all later texts until the buffer is empty. The thread then
/// writes a line with the number of dropped texts. An object must never be destroyed, because its thread is
/// not joined. Any thread.
class OutputQueue {
public:
    /// The queue's thread calls this function to write a piece of the added text. It may block. A piece has
    /// at most 4096 bytes. If a piece contains a line feed, the piece ends with one. If the thread cannot be
    /// started, `add` calls this function with the whole text.
    using Write = void(std::string_view text);

    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init): the buffer's memory is used as it is filled
    explicit OutputQueue(Write* toOutput) : write(toOutput) {}
    OutputQueue(const OutputQueue&) = delete;
    OutputQueue& operator=(const OutputQueue&) = delete;

    /// Adds the whole text or drops the whole text. A text of more than 65408 bytes never fits into the
    /// buffer. The first call starts the thread. If the system refuses a thread, writes `text` on the calling
    /// thread, and the next call tries to start the thread again.
    void add(std::string_view text);

    /// Waits, for at most `milliseconds`, until all added text is written. Returns false on timeout.
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
    std::array<char, 65536> buffer; // contains the waiting text from `begin` to `end`
    std::size_t begin = 0;
    std::size_t end = 0;
    std::size_t droppedTexts = 0;
    std::chrono::steady_clock::duration remainingWait = kMaxWait; // reset when the buffer is empty
    bool isWriting = false;
    bool hasThread = false;
};

// The queues that the printing functions and the logger use.
OutputQueue& standardOutput();
OutputQueue& standardError();
OutputQueue& systemLog(); // add whole lines only

/// Writes `text` to a descriptor, which may be non-blocking. Blocks until all of `text` is written. If the
/// descriptor fails, drops the rest of `text`.
void writeAll(int descriptor, std::string_view text);

} // namespace Lct
