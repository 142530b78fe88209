// Deletes a folder with all its contents.
#pragma once

#include "app/OutputFolder.h"

#include <atomic>

namespace Kest::App {

/// Deletes an open output folder with all its contents. Deletes links without following them. Fails at a
/// mount point. Returns an empty text when the folder is deleted. Otherwise stops at the first failure and
/// returns a text that names the entry that could not be deleted and the reason. If `stop` becomes true,
/// stops before the next entry and reports the incomplete deletion in the returned text. The number of open
/// descriptors and the stack's size do not depend on the depth of the folders. Any thread. Blocks as long as
/// the disk does.
std::string removeFolder(const OutputFolder& opened, const std::atomic<bool>& stop);

} // namespace Kest::App
