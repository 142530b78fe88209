// The lines in which an encoder reports on itself.
#pragma once

#include <string>
#include <sys/types.h>

namespace EncoderSimulator {

/// Makes lines with their line feed, about one process.
class ProgressLines {
public:
    /// `compactForm` leaves out every blank that stands between the parts of a line.
    ProgressLines(pid_t process, bool compactForm)
        : blank(compactForm ? "" : " "), start("pid:" + blank + std::to_string(process) + blank + "," + blank)
    {}

    std::string path(const std::string& output) const { return line("path:", output); }
    std::string type(const std::string& word) const { return line("enc_type:", word); }
    std::string progress(int percent) const { return line("P:", std::to_string(percent)); }
    std::string error(const std::string& what) const { return line("ERROR:", what); }

private:
    std::string line(const char* key, const std::string& value) const
    {
        return start + key + blank + value + "\n";
    }

    std::string blank;
    std::string start;
};

} // namespace EncoderSimulator
