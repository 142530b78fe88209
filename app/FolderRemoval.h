// Deletes a folder with all its contents.
#pragma once

#include "app/OutputFolder.h"

#include <atomic>

namespace Kest::App {

/// Deletes an open output folder. Deletes links without following them and does not enter other mounts.
/// Returns an empty text when nothing is left; otherwise stops and returns the first entry that could not be
/// deleted and the reason. Stops between two entries when `stop` becomes true. Descriptors and stack do not
/// grow with the depth. Any thread; blocks as long as the disk does.
std::string removeFolder(const OutputFolder& opened, const std::atomic<bool>& stop);

} // namespace Kest::App
