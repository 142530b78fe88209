// Aborts an encoding: ends the encoder and deletes its output folder, or refuses and returns the reason.
#pragma once

#include "backend/Process.h"

#include <atomic>
#include <string>
#include <vector>

namespace Kest::App {

/// The arguments of one abort: the state that the row showed when the user chose it.
struct AbortRequest {
    Settings::ProcessIdentity process; // identified at the encoding's first line
    bool wroteToPipe = false;          // the process was once seen with the progress pipe open
    std::string output;                // path of the output file; empty when none was reported
    std::string pipe;                  // path of the progress pipe
    std::string settingsFolder;        // absolute
};

/// Ends the encoder, then deletes its output folder. Returns an empty text when complete, also if there was
/// nothing left to end or delete; otherwise one line with what was refused or failed. Stops between two files
/// when `stop` becomes true. Any thread; blocks as long as the disk does.
std::string abortEncoder(const AbortRequest& request, const std::atomic<bool>& stop);

} // namespace Kest::App
