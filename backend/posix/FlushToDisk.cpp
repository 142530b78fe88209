// Waiting for the disk on systems where fsync does so.
#include "backend/FileIo.h"

#include <unistd.h>

namespace Kest::Settings {

bool flushToDisk(int file) { return fsync(file) == 0; }

} // namespace Kest::Settings
