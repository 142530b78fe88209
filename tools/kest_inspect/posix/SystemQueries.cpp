// Queries on systems without /proc, which have a menu bar.
#include "tools/kest_inspect/SystemQueries.h"

#include <fcntl.h>
#include <unistd.h>

namespace KestInspect {

std::vector<FileHolder> processesHolding(const std::string&) { return {}; }
std::vector<FileHolder> processesHoldingRemoved(const std::string&) { return {}; }

// On systems without /proc, F_GETLK reports locks of both kinds.
bool isLocked(const std::string& path)
{
    const int file = open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC);
    if (file < 0)
        return false;
    struct flock lock {};
    lock.l_type = F_WRLCK;
    lock.l_whence = SEEK_SET;
    const bool answered = fcntl(file, F_GETLK, &lock) == 0;
    close(file);
    return answered && lock.l_type != F_UNLCK;
}

std::optional<pid_t> creatorOfSegment(std::size_t) { return std::nullopt; }

std::optional<Finding> checkTray() { return std::nullopt; }

} // namespace KestInspect
