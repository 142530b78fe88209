#include "backend/ProgressPipe.h"

#include "lipc/SharedFile.h"
#include "log/Log.h"
#include "log/Output.h"

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace Kest::Settings {
namespace {

constexpr std::size_t kMaxPipes = 65;             // the current one and 64 earlier ones
constexpr int kWaitWithoutWakeUp = 1000;          // milliseconds
constexpr std::size_t kMaxPolled = kMaxPipes + 1; // and the wake-up

int openEnd(const char* path, int flags) { return ::open(path, flags | O_NONBLOCK | O_NOFOLLOW | O_CLOEXEC); }

bool isPipe(const char* path)
{
    struct stat status {};
    return lstat(path, &status) == 0 && S_ISFIFO(status.st_mode);
}

// A process that reads it notices nothing of this: an agent has a writing end of its own.
bool isReadPipe(const char* path)
{
    const int end = isPipe(path) ? openEnd(path, O_WRONLY) : -1;
    if (end >= 0)
        close(end);
    return end >= 0;
}

} // namespace

ProgressPipe::Pipe::~Pipe()
{
    for (const int end : {reader, writer})
        if (end >= 0)
            close(end);
}

bool ProgressPipe::make()
{
    const bool isSilent = failureIsTold || lossesToAnother() > 1;
    const bool isCreated = create(isSilent);
    if (isCreated && !std::exchange(isAnnounced, true))
        Lct::print("\nreading from : %s \n", path);
    auto made = isCreated ? open() : nullptr;
    failureIsTold = made == nullptr;
    if (made != nullptr) {
        keepEarlierPipes();
        pipes.push_back(std::move(made));
    }
    const MutexLock lock(mutex);
    isRequested = false;
    if (failureIsTold)
        return false;
    current = pipes.back().get();
    rivalry.made(PipeRivalry::Clock::now());
    return true;
}

// What is read until its encoders end; the oldest one makes room.
void ProgressPipe::keepEarlierPipes()
{
    if (!pipes.empty()) {
        const MutexLock lock(mutex); // `wake` must not use the end that is closed here
        close(std::exchange(pipes.back()->writer, -1));
        current = nullptr;
    }
    if (pipes.size() < kMaxPipes) {
        overflowIsLogged = false;
        return;
    }
    pipes.erase(pipes.begin());
    if (!std::exchange(overflowIsLogged, true))
        Lct::Log(Lct::eLogWarning, "encoding",
                 "more than %zu replaced pipes are open, the oldest is not read any more", kMaxPipes - 1);
}

// Whatever an earlier run, or something else, has left at the path is replaced.
bool ProgressPipe::create(bool isSilent)
{
    if (mkfifo(path, LIPC::kModeWorldWritable) == 0)
        return true;
    const bool isTaken = errno == EEXIST;
    if (isTaken && !isSilent)
        Lct::printSystemError("deleting existing file (or fifo)");
    if (isTaken) {
        std::remove(path);
        if (mkfifo(path, LIPC::kModeWorldWritable) == 0)
            return true;
    }
    if (!isSilent)
        Lct::printSystemError("can't create fifo");
    return false;
}

// Null when what is at the path by now is no pipe of this user.
std::unique_ptr<ProgressPipe::Pipe> ProgressPipe::open() const
{
    auto pipe = std::make_unique<Pipe>();
    pipe->reader = openEnd(path, O_RDONLY);
    struct stat status {};
    if (pipe->reader < 0 || fstat(pipe->reader, &status) != 0 || !S_ISFIFO(status.st_mode) ||
        status.st_uid != geteuid())
        return nullptr;
    pipe->device = status.st_dev;
    pipe->inode = status.st_ino;
    fchmod(pipe->reader, LIPC::kModeWorldWritable); // whatever the umask: encoders of other users report too
    pipe->writer = openEnd(path, O_WRONLY);
    if (pipe->writer < 0 || !isAtPath(*pipe))
        return nullptr;
    return pipe;
}

bool ProgressPipe::isAtPath(const Pipe& pipe) const
{
    struct stat there {};
    return lstat(path, &there) == 0 && there.st_dev == pipe.device && there.st_ino == pipe.inode;
}

int ProgressPipe::lossesToAnother() const
{
    const MutexLock lock(mutex);
    return rivalry.losses();
}

void ProgressPipe::check()
{
    {
        const MutexLock lock(mutex);
        if (isEnded || isRequested || (current != nullptr && isAtPath(*current)) ||
            !rivalry.mayReplace(isReadPipe(path), PipeRivalry::Clock::now()))
            return;
        isRequested = true;
    }
    wakeUp.raise();
}

// The line goes through an end of its own: it arrives even when something else is at the path. It wakes
// nobody when another process reads it first, or when the pipe is full.
void ProgressPipe::wake()
{
    {
        const MutexLock lock(mutex);
        while (current != nullptr && write(current->writer, "bla\n", 4) < 0 && errno == EINTR)
            ;
    }
    wakeUp.raise();
}

// Each pipe in turn, so that none has to wait for one that is always full.
ProgressPipe::Piece ProgressPipe::read()
{
    for (auto tries = pipes.size(); tries > 0; --tries) {
        turn = (turn + 1) % pipes.size();
        auto& pipe = *pipes[turn];
        const auto count = ::read(pipe.reader, buffer.data(), buffer.size());
        if (count > 0)
            return {&pipe.lines, {buffer.data(), static_cast<std::size_t>(count)}};
        if (count < 0 && errno != EAGAIN && errno != EINTR) {
            Lct::printSystemError("received error -> quitting");
            return {nullptr, {}, true};
        }
        if (count == 0) // an earlier pipe that its encoders have left
            pipes.erase(pipes.begin() + static_cast<std::ptrdiff_t>(turn));
    }
    waitForBytes();
    return {};
}

void ProgressPipe::remove()
{
    const MutexLock lock(mutex);
    if (current != nullptr && isAtPath(*current))
        unlink(path);
    current = nullptr;
    isEnded = true;
    pipes.clear();
}

void ProgressPipe::waitForBytes()
{
    std::array<pollfd, kMaxPolled> readable{};
    readable[0] = {wakeUp.descriptor(), POLLIN, 0};
    for (std::size_t i = 0; i < pipes.size(); ++i)
        readable[i + 1] = {pipes[i]->reader, POLLIN, 0};
    poll(readable.data(), static_cast<nfds_t>(pipes.size() + 1),
         wakeUp.descriptor() < 0 ? kWaitWithoutWakeUp : -1);
    if (readable[0].revents != 0)
        wakeUp.clear();
}

} // namespace Kest::Settings
