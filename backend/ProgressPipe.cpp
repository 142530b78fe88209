#include "backend/ProgressPipe.h"

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

constexpr mode_t kForAll = 0666;
constexpr std::size_t kMostPipes = 8; // of all but the current one only the encoders' ends are left

int openEnd(const char* path, int flags) { return ::open(path, flags | O_NONBLOCK | O_NOFOLLOW | O_CLOEXEC); }

} // namespace

ProgressPipe::Pipe::~Pipe()
{
    for (const int end : {reader, writer})
        if (end >= 0)
            close(end);
}

bool ProgressPipe::make()
{
    auto made = create() ? open() : nullptr;
    failureIsTold = made == nullptr;
    if (made == nullptr)
        return false;
    if (!pipes.empty()) {
        const MutexLock lock(mutex); // nobody wakes by the end that is closed here
        close(std::exchange(pipes.back()->writer, -1));
        current = nullptr;
    }
    if (pipes.size() == kMostPipes)
        pipes.erase(pipes.begin());
    pipes.push_back(std::move(made));
    const MutexLock lock(mutex);
    current = pipes.back().get();
    lost = false;
    return true;
}

// Whatever an earlier run, or something else, has left at the path is replaced.
bool ProgressPipe::create()
{
    if (mkfifo(path, kForAll) == 0)
        return true;
    const bool isTaken = errno == EEXIST;
    if (isTaken && !failureIsTold)
        Lct::printSystemError("deleting existing file (or fifo)");
    if (isTaken && std::remove(path) == 0 && mkfifo(path, kForAll) == 0)
        return true;
    if (!failureIsTold)
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
    fchmod(pipe->reader, kForAll); // whatever the umask: encoders of other users report too
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

bool ProgressPipe::isLost() const
{
    const MutexLock lock(mutex);
    return lost;
}

void ProgressPipe::look()
{
    {
        const MutexLock lock(mutex);
        if (current == nullptr || isAtPath(*current))
            return;
        lost = true;
    }
    wake();
}

// Through an end of its own: it arrives even when something else stands at the path by now. A full pipe needs
// no wake-up.
void ProgressPipe::wake()
{
    const MutexLock lock(mutex);
    while (current != nullptr && write(current->writer, "bla\n", 4) < 0 && errno == EINTR)
        ;
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
            return {};
        }
        if (count == 0) // an earlier pipe that its encoders have left
            pipes.erase(pipes.begin() + static_cast<std::ptrdiff_t>(turn));
    }
    waitForBytes();
    return {&pipes.back()->lines, {}};
}

void ProgressPipe::remove()
{
    const MutexLock lock(mutex);
    if (current != nullptr && isAtPath(*current))
        unlink(path);
    current = nullptr;
    pipes.clear();
}

void ProgressPipe::waitForBytes() const
{
    std::array<pollfd, kMostPipes> readable{};
    for (std::size_t i = 0; i < pipes.size(); ++i)
        readable[i] = {pipes[i]->reader, POLLIN, 0};
    poll(readable.data(), static_cast<nfds_t>(pipes.size()), -1);
}

} // namespace Kest::Settings
