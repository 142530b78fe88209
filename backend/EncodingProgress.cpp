// The named pipe in which encoders report, and the table of what they have reported.
#include "backend/Backend.h"
#include "backend/EncodingLine.h"
#include "log/Log.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Kest::Settings {
namespace {

constexpr std::size_t kReadBytes = 1024;
constexpr mode_t kForAll = 0666;
constexpr int kOpenRetryMs = 10;

bool isLineEnd(char c) { return c == '\n' || c == '\r' || c == '\0'; }

// Whatever an earlier run, or something else, has left at the path is replaced.
bool createFifo(const char* path)
{
    if (mkfifo(path, kForAll) == 0)
        return true;
    if (errno == EEXIST) {
        std::perror("deleting existing file (or fifo)");
        std::remove(path);
        if (mkfifo(path, kForAll) == 0)
            return true;
    }
    std::perror("can't create fifo");
    return false;
}

// After a read that gave nothing: waits for more. False when reading has failed for good.
bool waitForBytes(int fifo, int readError)
{
    if (readError != EAGAIN && readError != EINTR) {
        std::perror("received error -> quitting");
        return false;
    }
    pollfd readable{fifo, POLLIN, 0};
    poll(&readable, 1, -1);
    return true;
}

// The file's name without its last extension.
std::string displayName(const std::string& path)
{
    const auto name = path.substr(path.rfind('/') + 1); // npos + 1 is 0
    return name.substr(0, name.rfind('.'));
}

} // namespace

/// A line that may arrive in many pieces.
struct LineAccumulator {
    // Encoders write lines of up to PIPE_BUF bytes whole; a longer one is mixed with others' and is dropped.
    static constexpr std::size_t kLongestLine = 4096;

    std::ostringstream line;
    std::size_t length = 0;

    void append(const char* bytes, std::size_t count)
    {
        if (length <= kLongestLine && length + count <= kLongestLine)
            line.write(bytes, static_cast<std::streamsize>(count));
        length = std::min(length + count, kLongestLine + 1);
    }
    bool isTooLong() const { return length > kLongestLine; }
    void startLine()
    {
        line = std::ostringstream();
        length = 0;
    }
};

void Backend::namedPipeThreadloop()
{
    if (!createFifo(fifoPath))
        return;
    std::printf("\nreading from : %s \n", fifoPath);
    const int descriptor = openFifo();
    if (descriptor >= 0)
        std::printf("\nfifo fd = %d \n", descriptor);

    LineAccumulator accumulator;
    char buffer[kReadBytes];
    while (stopRequests == 0) {
        const auto count = read(descriptor, buffer, sizeof buffer);
        if (count > 0)
            feed(buffer, static_cast<std::size_t>(count), accumulator);
        else if (count < 0 && !waitForBytes(descriptor, errno))
            break;
    }
    closeFifo();
}

// Opened for writing too, so that reads never report an end when an encoder goes. Does not block, so that the
// thread can always be woken; returns -1 only when a stop was asked for.
int Backend::openFifo()
{
    while (stopRequests == 0) {
        const int descriptor = open(fifoPath, O_RDWR | O_NONBLOCK | O_NOFOLLOW | O_CLOEXEC);
        struct stat status {};
        if (descriptor >= 0 && fstat(descriptor, &status) == 0 && S_ISFIFO(status.st_mode)) {
            fchmod(descriptor, kForAll); // whatever the umask: encoders of other users report too
            const MutexLock lock(fifoMutex);
            fifo = descriptor;
            return descriptor;
        }
        if (descriptor >= 0)
            close(descriptor);
        poll(nullptr, 0, kOpenRetryMs);
    }
    return -1;
}

// Through the reader's own descriptor: it arrives even when something else stands at the path by now. A full
// pipe needs no wake-up.
void Backend::wakeReader()
{
    const MutexLock lock(fifoMutex);
    if (fifo >= 0) [[maybe_unused]]
        const auto written = write(fifo, "bla\n", 4);
}

// Removes the pipe unless something else has taken its place.
void Backend::closeFifo()
{
    const MutexLock lock(fifoMutex);
    struct stat own {};
    struct stat there {};
    const bool isFifo = lstat(fifoPath, &there) == 0 && S_ISFIFO(there.st_mode);
    const bool isOurs =
        fifo < 0 || (fstat(fifo, &own) == 0 && own.st_dev == there.st_dev && own.st_ino == there.st_ino);
    if (fifo >= 0)
        close(fifo);
    fifo = -1;
    if (isFifo && isOurs)
        unlink(fifoPath);
}

void Backend::feed(const char* bytes, std::size_t count, LineAccumulator& accumulator)
{
    const char* const end = bytes + count;
    while (bytes != end) {
        const char* lineEnd = std::find_if(bytes, end, isLineEnd);
        accumulator.append(bytes, static_cast<std::size_t>(lineEnd - bytes));
        if (lineEnd == end)
            return;
        if (accumulator.isTooLong())
            Lct::Log(Lct::eLogError, "encoding", "line of more than %zu bytes dropped",
                     LineAccumulator::kLongestLine);
        else if (accumulator.length > 0)
            parse_1line(accumulator.line);
        accumulator.startLine();
        bytes = lineEnd + 1;
    }
}

void Backend::parse_1line(std::ostringstream& line)
{
    const std::string text = line.str();
    if (const auto parsed = parseEncodingLine(text))
        std::visit([&](const auto& content) { take(parsed->pid, content); }, parsed->content);
}

void Backend::take(std::int32_t pid, const ProgressLine& line)
{
    const char* name = nullptr;
    {
        const MutexLock lock(encodingMutex);
        auto& encoding = touchEncoding(pid);
        encoding.percentage = line.percentage;
        name = encoding.nameText;
    }
    // Valid without the lock: only this thread changes a name.
    sendMessage(line.percentage, pid, name);
}

void Backend::take(std::int32_t pid, const PathLine& line)
{
    const MutexLock lock(encodingMutex);
    auto& encoding = touchEncoding(pid);
    encoding.path = line.path;
    encoding.name = displayName(encoding.path);
    encoding.nameText = encoding.name.c_str();
}

void Backend::take(std::int32_t pid, const TypeLine& line)
{
    const MutexLock lock(encodingMutex);
    touchEncoding(pid).encType = line.word;
}

void Backend::take(std::int32_t pid, const ErrorLine&)
{
    const MutexLock lock(encodingMutex);
    auto& encoding = touchEncoding(pid);
    --encoding.errorCount;
    // Within the lock: a failure and the record that tells of it are seen together.
    sendMessage(-1, pid, encoding.nameText);
}

void Backend::take(std::int32_t pid, const OverlongValue&)
{
    Lct::Log(Lct::eLogError, "encoding", "path or type of 1024 bytes or more refused, process %d", pid);
}

encodingStatus& Backend::touchEncoding(std::int32_t pid)
{
    auto& encoding = encodingStatuses[pid];
    encoding.pid = pid;
    return encoding;
}

encodingStatus Backend::getEncodingStatus(int pid) const
{
    const MutexLock lock(encodingMutex);
    const auto found = encodingStatuses.find(pid);
    return found == encodingStatuses.end() ? encodingStatus() : found->second;
}

} // namespace Kest::Settings
