#include "lipc/ShmKey.h"

#include "lipc/SharedFile.h"
#include "log/Log.h"

#include <cerrno>
#include <cstring>
#include <ctime>
#include <sys/ipc.h>
#include <sys/stat.h>
#include <unistd.h>

namespace LIPC {
namespace {

constexpr int kProjectId = 1;
constexpr std::time_t kMaxAge = 3600; // seconds

// Programs that clean /tmp remove files whose times are old. Not refreshed in each call: that is a write.
void prepareMarker(int file)
{
    struct stat status {};
    if (fstat(file, &status) != 0)
        return;
    if (status.st_size > 0) [[maybe_unused]]
        const int failure = ftruncate(file, 0);
    if (std::time(nullptr) - status.st_mtime > kMaxAge)
        futimens(file, nullptr);
}

// A failure is left for ftok to report: it needs only the path, so another user's marker that this user may
// not write serves as well.
void prepareMarker(const char* path)
{
    const int file = openSharedFile(path, kModeWorldWritable);
    if (file < 0)
        return;
    prepareMarker(file);
    close(file);
}

// ftok follows links, and a planted one would give the key of a file that somebody else chose.
key_t keyOf(const char* path)
{
    struct stat status {};
    if (lstat(path, &status) == 0 && S_ISLNK(status.st_mode)) {
        errno = ELOOP;
        return -1;
    }
    return ftok(path, kProjectId);
}

} // namespace

// The host derives its keys from the same doubled names, "/tmp/LIPC_LIPC_SESSION".
std::string markerPath(const char* name) { return std::string("/tmp/LIPC_") + name; }

key_t shmKey(const char* name)
{
    const auto path = markerPath(name);
    prepareMarker(path.c_str());
    const key_t key = keyOf(path.c_str());
    if (key == -1)
        Lct::Log(Lct::eLogError, "shmKey", "Could not create key for shm object (ftok) (%s): %s", name,
                 std::strerror(errno));
    return key;
}

key_t existingShmKey(const char* name) { return keyOf(markerPath(name).c_str()); }

} // namespace LIPC
