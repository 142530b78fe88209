// Aborts an encoding: checks that this is safe, ends the encoder and deletes its output folder.
#pragma once

#include "backend/Process.h"

#include <atomic>
#include <string>
#include <vector>

namespace Kest::App {

/// The arguments of one abort. `process`, `hadPipeOpen` and `output` describe the encoding as the menu showed
/// it when the user chose the abort.
struct AbortRequest {
    Settings::ProcessIdentity process; // the encoder, identified when it wrote its first line
    bool hadPipeOpen = false;          // whether the encoder was ever seen with the progress pipe open
    std::string output;                // path of the output file; empty if the encoder reported none
    std::string pipe;                  // path of the progress pipe
    std::string settingsFolder;        // an absolute path; never deleted
};

/// Ends the encoder, then deletes its output folder. Returns an empty text when both are complete, also if
/// the encoder had already ended or there was no folder. Otherwise returns one line of printable text that
/// describes what was refused or failed. If `stop` becomes true during the deletion, stops before the next
/// file and reports the incomplete deletion in the returned text. Any thread. Waits up to 5 s for the encoder
/// to end. Disk access can block longer.
std::string abortEncoder(const AbortRequest& request, const std::atomic<bool>& stop);

} // namespace Kest::App
