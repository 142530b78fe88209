// Writes an encoder's lines into the named pipe of a process that follows encodings.
#pragma once

#include <deque>
#include <string>
#include <utility>
#include <vector>

namespace EncoderSimulator {

/// Sends whole lines, one write each, and never blocks: the reader may be missing, slow, or replaced by
/// another. Opens the pipe when it has a reader and never creates it; does not write to a file of another
/// type at the path. The process must ignore SIGPIPE.
class ProgressPipeWriter {
public:
    explicit ProgressPipeWriter(std::string pipePath) : path(std::move(pipePath)) {}
    ~ProgressPipeWriter() { close(); }
    ProgressPipeWriter(const ProgressPipeWriter&) = delete;
    ProgressPipeWriter& operator=(const ProgressPipeWriter&) = delete;

    /// Sets the lines that each new reader gets first.
    void setIntroduction(std::vector<std::string> lines) { introduction = std::move(lines); }

    /// Sends a line to the current reader. A later reader gets only the last of these lines.
    void send(const std::string& line);

    /// Connects to a reader if there is none yet, and sends what the pipe had no room for. Call it often.
    void pump();

    /// Returns whether there is a reader that has not received all lines.
    bool hasUnsentLines() const { return descriptor >= 0 && !unsent.empty(); }

private:
    bool open();
    void close();

    std::string path;
    std::vector<std::string> introduction;
    std::string lastLine; // empty until a line was sent
    std::deque<std::string> unsent;
    int descriptor = -1;
};

} // namespace EncoderSimulator
