// Deletes a folder with all its contents.
#pragma once

#include "app/OutputFolder.h"

#include <atomic>

namespace Kest::App {

/// Deletes `opened.folder`, which must be open, with all its contents. Deletes links without following them.
/// Returns an empty text when the folder is deleted. Stops at the first failure, at the first mount point,
/// and before the next entry once `stop` is true. In each case, returns a text that names the entry at which
/// it stopped, and the reason. The number of open descriptors and the size of the stack do not depend on the
/// depth of the folders. Any thread. Blocks as long as the disk does.
std::string removeFolder(const OutputFolder& opened, const std::atomic<bool>& stop);

} // namespace Kest::App
