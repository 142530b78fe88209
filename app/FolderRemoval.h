// Deletes a folder with all that is in it.
#pragma once

#include "app/OutputFolder.h"

#include <atomic>

namespace Kest::App {

/// Deletes an open output folder. Links are deleted and not followed, other mounts are not entered. Returns
/// an empty text when nothing of it is left; otherwise the first entry that could not be deleted and why, and
/// the rest is kept. Stops between two entries when `stop` becomes true. Uses the same few descriptors and
/// the same stack at any depth. Any thread; blocks as long as the disk does.
std::string removeFolder(const OutputFolder& opened, const std::atomic<bool>& stop);

} // namespace Kest::App
