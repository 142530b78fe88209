// Keeps what the process prints away from a screen that it draws on.
#pragma once

#include "text/LineSplitter.h"

#include <string>

namespace Kest::Terminal {

/// While it lives, standard output, and standard error where that is a terminal, go into a pipe. What nobody
/// reads in time is dropped, so that printing never waits. Main thread only.
class OutputCapture {
public:
    OutputCapture();
    ~OutputCapture();
    OutputCapture(const OutputCapture&) = delete;
    OutputCapture& operator=(const OutputCapture&) = delete;

    /// What to watch; -1 when there is no pipe, and everything goes where it went.
    int descriptor() const { return readEnd; }
    /// Reads what has been printed. The last line of it that is not blank, or the last one read before.
    const std::string& lastLine();

private:
    int readEnd = -1;
    int outputBefore = -1;
    int errorBefore = -1;
    Text::LineSplitter lines;
    std::string last;
};

} // namespace Kest::Terminal
