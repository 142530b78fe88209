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

// Programs that clean /tmp remove files whose times are old. Refreshed once an hour only, because it writes.
void prepareKeyFile(int file)
{
    struct stat status {};
    if (fstat(file, &status) != 0)
        return;
    if (status.st_size > 0) [[maybe_unused]]
        const int failure = ftruncate(file, 0);
    if (std::time(nullptr) - status.st_mtime > kMaxAge)
        futimens(file, nullptr);
}

// Failures are ignored here: ftok reports them, and requires only that the file exists, not that it is
// writable.
void prepareKeyFile(const char* path)
{
    const int file = openSharedFile(path, kModeWorldWritable);
    if (file < 0)
        return;
    prepareKeyFile(file);
    close(file);
}

// ftok follows links, and a planted link would give the key of an attacker's file.
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

// The host uses the same names with a doubled prefix, "/tmp/LIPC_LIPC_SESSION".
std::string keyFilePath(const char* name) { return std::string("/tmp/LIPC_") + name; }

key_t shmKey(const char* name)
{
    const auto path = keyFilePath(name);
    prepareKeyFile(path.c_str());
    const key_t key = keyOf(path.c_str());
    if (key == -1)
        Lct::Log(Lct::eLogError, "shmKey", "Could not create key for shm object (ftok) (%s): %s", name,
                 std::strerror(errno));
    return key;
}

key_t existingShmKey(const char* name) { return keyOf(keyFilePath(name).c_str()); }

} // namespace LIPC
