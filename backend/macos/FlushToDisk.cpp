// Waiting for the disk on macOS.
#include "backend/FileIo.h"

#include <fcntl.h>
#include <unistd.h>

namespace Kest::Settings {

// On macOS fsync leaves the bytes in the drive's cache. Not every file system supports F_FULLFSYNC.
bool flushToDisk(int file) { return fcntl(file, F_FULLFSYNC) == 0 || fsync(file) == 0; }

} // namespace Kest::Settings
