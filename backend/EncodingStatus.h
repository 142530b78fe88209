// The state of one offline encoding.
#pragma once

#include "backend/Process.h"

#include <cstdint>
#include <string>

namespace Kest::Settings {

constexpr std::int32_t kFinished = 100; // per cent

struct encodingStatus {
    std::int32_t pid = 0;         // the encoder's process id; 0 in the record of an unknown one
    std::string encType;          // the word of its last type line
    std::int32_t percentage = -1; // as last reported, 100 is finished; -1 before the first report
    std::string path;             // its output file; empty before a path line and after a refused one
    std::string name;             // the output file's name without its last extension
    const char* nameText =
        nullptr;                 // the characters of `name` in the Backend's own record; null without a path
    std::int32_t errorCount = 0; // minus the number of reported errors
    bool hasFailed = false;      // its last report is an error
    bool wroteToPipe = false;    // the process had the progress pipe open when it was checked
    ProcessIdentity process;     // start time 0 if no process had the id at the first line
};

} // namespace Kest::Settings
