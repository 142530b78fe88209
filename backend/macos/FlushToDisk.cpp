// The Mac's way of waiting for the disk.
#include "backend/FileText.h"

#include <fcntl.h>
#include <unistd.h>

namespace Kest::Settings {

// Here fsync leaves the bytes in the drive's own memory. Not every file system can do better.
bool flushToDisk(int file) { return fcntl(file, F_FULLFSYNC) == 0 || fsync(file) == 0; }

} // namespace Kest::Settings
