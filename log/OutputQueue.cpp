#include "log/OutputQueue.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <poll.h>
#include <pthread.h>
#include <unistd.h>

namespace Lct {
namespace {

constexpr std::size_t kMaxPieceBytes = 4096; // PIPE_BUF: one write to a pipe is not split
constexpr std::size_t kMaxReportBytes = 128; // kept free for the line about dropped texts
constexpr std::size_t kThreadStackBytes = 262144;

} // namespace

void writeAll(int descriptor, std::string_view text)
{
    while (!text.empty()) {
        const auto count = ::write(descriptor, text.data(), text.size());
        if (count >= 0) {
            text.remove_prefix(static_cast<std::size_t>(count));
        } else if (errno == EAGAIN || errno == EWOULDBLOCK) { // another process has made it non-blocking
            pollfd output{descriptor, POLLOUT, 0};
            if (poll(&output, 1, -1) < 0 && errno != EINTR)
                return;
        } else if (errno != EINTR) {
            return;
        }
    }
}

void OutputQueue::add(std::string_view text)
{
    std::unique_lock lock(mutex);
    if (!hasThread && !startThread())
        return write(text);
    waitForRoom(lock, text.size());
    if (droppedTexts > 0 || !hasRoom(text.size()))
        ++droppedTexts;
    else
        append(text);
    lock.unlock(); // or the thread would wake up only to wait for it
    added.notify_one();
}

bool OutputQueue::hasRoom(std::size_t bytes) const
{
    return bytes <= buffer.size() - kMaxReportBytes - (end - begin);
}

void OutputQueue::waitForRoom(std::unique_lock<std::mutex>& lock, std::size_t bytes)
{
    if (droppedTexts > 0 || hasRoom(bytes))
        return;
    const auto start = std::chrono::steady_clock::now();
    written.wait_for(lock, remainingWait, [&] { return hasRoom(bytes); });
    remainingWait -= std::min(remainingWait, std::chrono::steady_clock::now() - start);
}

void OutputQueue::append(std::string_view text)
{
    if (text.size() > buffer.size() - end) {
        std::copy(buffer.begin() + static_cast<std::ptrdiff_t>(begin),
                  buffer.begin() + static_cast<std::ptrdiff_t>(end), buffer.begin());
        end -= begin;
        begin = 0;
    }
    text.copy(buffer.data() + end, text.size());
    end += text.size();
}

bool OutputQueue::flush(int milliseconds)
{
    std::unique_lock lock(mutex);
    return written.wait_for(lock, std::chrono::milliseconds(milliseconds),
                            [this] { return begin == end && !isWriting; });
}

// The thread gets no signals: the main thread handles them.
bool OutputQueue::startThread()
{
    sigset_t all;
    sigset_t before;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &before);
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    pthread_attr_setstacksize(&attributes, kThreadStackBytes);
    pthread_attr_setdetachstate(&attributes, PTHREAD_CREATE_DETACHED);
    pthread_t thread{};
    hasThread = pthread_create(&thread, &attributes, runThread, this) == 0;
    pthread_attr_destroy(&attributes);
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
    return hasThread;
}

void* OutputQueue::runThread(void* queue)
{
    static_cast<OutputQueue*>(queue)->run();
    return nullptr;
}

void OutputQueue::run()
{
    std::array<char, kMaxPieceBytes> piece{};
    std::unique_lock lock(mutex);
    while (true) {
        added.wait(lock, [this] { return begin != end || droppedTexts > 0; });
        const auto size = takePiece(piece.data());
        isWriting = true;
        lock.unlock();
        write({piece.data(), size});
        lock.lock();
        isWriting = false;
        if (begin == end)
            remainingWait = kMaxWait;
        reportDropped();
        written.notify_all();
    }
}

std::size_t OutputQueue::takePiece(char* piece)
{
    const std::string_view waiting(buffer.data() + begin, end - begin);
    auto size = std::min(waiting.size(), kMaxPieceBytes);
    if (const auto lineEnd = waiting.substr(0, size).rfind('\n'); lineEnd != std::string_view::npos)
        size = lineEnd + 1;
    waiting.copy(piece, size);
    begin += size;
    if (begin == end)
        begin = end = 0; // keeps the used part of the buffer small
    return size;
}

// Called only when the buffer is empty, which shows that the output is read again.
void OutputQueue::reportDropped()
{
    if (droppedTexts == 0 || begin != end)
        return;
    char line[kMaxReportBytes];
    const int size = std::snprintf(line, sizeof line,
                                   "(%zu lines of output were dropped: nothing read them)\n", droppedTexts);
    droppedTexts = 0;
    append({line, static_cast<std::size_t>(size)});
}

} // namespace Lct
