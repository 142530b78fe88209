// Systems on which fsync waits for the disk.
#include "backend/FileText.h"

#include <unistd.h>

namespace Kest::Settings {

bool flushToDisk(int file) { return fsync(file) == 0; }

} // namespace Kest::Settings
