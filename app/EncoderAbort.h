// Aborts an encoding: ends the encoder, which is a process, and deletes the folder of its output file.
#pragma once

#include "backend/Process.h"

#include <atomic>
#include <string>
#include <vector>

namespace Kest::App {

/// The arguments of one abort. `process`, `hadPipeOpen` and `output` are from the row of the encoding in the
/// menu.
struct AbortRequest {
    Settings::ProcessIdentity process; // the encoder, as identified when its first line in `pipe` was read
    bool hadPipeOpen = false;          // whether it was found to have `pipe` open
    std::string output;                // path of the output file; empty if unknown
    std::string pipe;                  // path of the named pipe into which encoders write
    std::string settingsFolder;        // absolute path; this folder is never deleted
};

/// Kills the encoder and waits up to 5 s until it has ended, then deletes the folder that contains `output`.
/// Returns an empty text when both are complete, also if the encoder had already ended or there is no folder.
/// Otherwise returns one line of printable text: what failed, that `process` may be no encoder, or that the
/// folder must not be deleted. `stop` is checked only before each entry of the folder is deleted. If it is
/// true, the remaining entries are kept, and the text says so. Any thread. A slow disk can make the call take
/// longer than 5 s.
std::string abortEncoder(const AbortRequest& request, const std::atomic<bool>& stop);

} // namespace Kest::App
