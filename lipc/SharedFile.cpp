#include "lipc/SharedFile.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace LIPC {
namespace {

constexpr int kFlags = O_WRONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC;

int refuse(int file, int reason)
{
    close(file);
    errno = reason;
    return -1;
}

} // namespace

// O_CREAT only for an absent file: fs.protected_regular refuses it for another user's file in such a folder.
int openSharedFile(const char* path, unsigned mode)
{
    int file = open(path, kFlags);
    if (file < 0 && errno == ENOENT)
        file = open(path, kFlags | O_CREAT | O_EXCL, mode);
    if (file < 0 && errno == EEXIST) // another process has just created it
        file = open(path, kFlags);
    if (file < 0)
        return -1;
    struct stat status {};
    if (fstat(file, &status) != 0 || !S_ISREG(status.st_mode))
        return refuse(file, EINVAL);
    return status.st_nlink == 1 ? file : refuse(file, EMLINK);
}

} // namespace LIPC
