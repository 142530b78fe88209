// What is known of one offline encoding.
#pragma once

#include <cstdint>
#include <string>

namespace Kest::Settings {

struct encodingStatus {
    std::int32_t pid = 0;         // the encoder's process; 0 in the record of an unknown one
    std::string encType;          // the word of its last type line
    std::int32_t percentage = -1; // as last reported, 100 is finished; -1 before the first report
    std::string path;             // its output file
    std::string name;             // the output file's name without its last extension
    const char* nameText =
        nullptr;                 // the characters of `name` in the Backend's own record; null before a path
    std::int32_t errorCount = 0; // minus the number of errors reported
};

} // namespace Kest::Settings
