// The state of one offline encoding.
#pragma once

#include "backend/Process.h"

#include <cstdint>
#include <string>

namespace Kest::Settings {

constexpr std::int32_t kFinished = 100; // the percentage from which an encoding is finished

struct encodingStatus {
    std::int32_t pid = 0;         // the encoder's process id; 0 in a default record
    std::string encType;          // as last written by the encoder, for example "Main"; empty before
    std::int32_t percentage = -1; // as last reported, may exceed 100; -1 if none was reported
    std::string path;             // of the output file; empty if unknown or too long
    std::string name;             // of the output file, without its last extension
    // Points to `name` of the record in the `EncodingTable`; in a copy of the record, still points there.
    // Null if there is no path. Only the thread that changes the table, the pipe thread, may use it.
    const char* nameText = nullptr;
    std::int32_t errorCount = 0; // the number of reported errors, negated
    bool hasFailed = false;      // the last report is an error, not a percentage
    bool hadPipeOpen = false;    // the process was once found to have the encoders' pipe open
    ProcessIdentity process;     // start time 0 if unknown when the first line was read
};

} // namespace Kest::Settings
