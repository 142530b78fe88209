#include "backend/ProgressPipeReader.h"

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

// Returns whether a process reads the pipe. An agent that reads it does not notice the check, as it has the
// writing end open too.
bool isReadPipe(const char* path)
{
    const int end = isPipe(path) ? openEnd(path, O_WRONLY) : -1;
    if (end >= 0)
        close(end);
    return end >= 0;
}

} // namespace

ProgressPipeReader::Pipe::~Pipe()
{
    for (const int end : {reader, writer})
        if (end >= 0)
            close(end);
}

bool ProgressPipeReader::make()
{
    const bool isSilent = isFailurePrinted || lossesToAnother() > 1;
    const bool isCreated = create(isSilent);
    if (isCreated && !std::exchange(isAnnounced, true))
        Lct::print("\nreading from : %s \n", path);
    auto made = isCreated ? open() : nullptr;
    isFailurePrinted = made == nullptr;
    if (made != nullptr) {
        retainCurrentPipe();
        pipes.push_back(std::move(made));
    }
    const MutexLock lock(mutex);
    isRequested = false;
    if (isFailurePrinted)
        return false;
    current = pipes.back().get();
    rivalry.pipeCreated(PipeRivalry::Clock::now());
    return true;
}

// Keeps the current pipe open until its encoders end, and drops the oldest one if there are too many.
void ProgressPipeReader::retainCurrentPipe()
{
    if (!pipes.empty()) {
        const MutexLock lock(mutex); // `wake` must not use the descriptor that is closed here
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

// Replaces any file at the path, such as the pipe of a killed agent.
bool ProgressPipeReader::create(bool isSilent)
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

// Returns null if the file at the path is not a pipe of this user.
std::unique_ptr<ProgressPipeReader::Pipe> ProgressPipeReader::open() const
{
    auto pipe = std::make_unique<Pipe>();
    pipe->reader = openEnd(path, O_RDONLY);
    struct stat status {};
    if (pipe->reader < 0 || fstat(pipe->reader, &status) != 0 || !S_ISFIFO(status.st_mode) ||
        status.st_uid != geteuid())
        return nullptr;
    pipe->device = status.st_dev;
    pipe->inode = status.st_ino;
    fchmod(pipe->reader, LIPC::kModeWorldWritable); // not by the umask: encoders of other users report too
    pipe->writer = openEnd(path, O_WRONLY);
    if (pipe->writer < 0 || !isAtPath(*pipe))
        return nullptr;
    return pipe;
}

bool ProgressPipeReader::isAtPath(const Pipe& pipe) const
{
    struct stat there {};
    return lstat(path, &there) == 0 && there.st_dev == pipe.device && there.st_ino == pipe.inode;
}

int ProgressPipeReader::lossesToAnother() const
{
    const MutexLock lock(mutex);
    return rivalry.losses();
}

void ProgressPipeReader::check()
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

// Writes the line through the agent's own descriptor, so that it arrives even if something else is at the
// path. The line alone is not enough: another process may read it first, or the pipe may be full.
void ProgressPipeReader::wake()
{
    {
        const MutexLock lock(mutex);
        while (current != nullptr && write(current->writer, "bla\n", 4) < 0 && errno == EINTR)
            ;
    }
    wakeUp.raise();
}

// Reads the pipes in turn, so that a pipe that is always full does not block the others.
ProgressPipeReader::Piece ProgressPipeReader::read()
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
        if (count == 0) // an earlier pipe whose encoders have closed it
            pipes.erase(pipes.begin() + static_cast<std::ptrdiff_t>(turn));
    }
    waitForBytes();
    return {};
}

void ProgressPipeReader::remove()
{
    const MutexLock lock(mutex);
    if (current != nullptr && isAtPath(*current))
        unlink(path);
    current = nullptr;
    isEnded = true;
    pipes.clear();
}

void ProgressPipeReader::waitForBytes()
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
