// Writes an encoder's lines into the named pipe of the agent.
#pragma once

#include <deque>
#include <string>
#include <utility>
#include <vector>

namespace EncoderSimulator {

/// Writes each line with one call and never blocks. There may be no reader, the reader may be slow, and
/// another reader may replace it. Opens the pipe when it has a reader; never creates the pipe, and never
/// writes to a file at the path that is not a pipe. The process must ignore SIGPIPE. Not synchronised.
class ProgressPipeWriter {
public:
    explicit ProgressPipeWriter(std::string pipePath) : path(std::move(pipePath)) {}
    ~ProgressPipeWriter() { close(); }
    ProgressPipeWriter(const ProgressPipeWriter&) = delete;
    ProgressPipeWriter& operator=(const ProgressPipeWriter&) = delete;

    /// Sets the lines that each new reader receives first, each with its line feed. Call it before `send`.
    void setIntroduction(std::vector<std::string> lines) { introduction = std::move(lines); }

    /// Sends a line, which must end with a line feed, to the current reader. A reader that connects later
    /// receives only the last line that was sent.
    void send(const std::string& line);

    /// Opens the pipe if it is not open and has a reader, then writes the lines that were not written because
    /// the pipe was full. If the reader has ended, closes the pipe and drops these lines. Call this function
    /// at short intervals.
    void pump();

    /// Returns whether the pipe is open and some lines are not written yet.
    bool hasUnsentLines() const { return descriptor >= 0 && !unsent.empty(); }

private:
    bool open();
    void close();

    std::string path;
    std::vector<std::string> introduction;
    std::string lastLine; // empty before the first `send`
    std::deque<std::string> unsent;
    int descriptor = -1;
};

} // namespace EncoderSimulator
