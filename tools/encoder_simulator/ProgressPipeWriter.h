// Writes an encoder's lines into the named pipe of the agent.
#pragma once

#include <deque>
#include <string>
#include <utility>
#include <vector>

namespace EncoderSimulator {

/// Writes each line with one system call and never blocks. There may be no reader, the reader may be slow,
/// and another reader may replace the first. Opens the pipe only when the pipe has a reader. Never creates
/// the pipe. If the file at the path is not a pipe, never writes to it. The process must ignore SIGPIPE. Not
/// synchronised.
class ProgressPipeWriter {
public:
    explicit ProgressPipeWriter(std::string pipePath) : path(std::move(pipePath)) {}
    ~ProgressPipeWriter() { close(); }
    ProgressPipeWriter(const ProgressPipeWriter&) = delete;
    ProgressPipeWriter& operator=(const ProgressPipeWriter&) = delete;

    /// Sets the lines that each new reader receives first, each with its line feed. Call it before `send`.
    void setIntroduction(std::vector<std::string> lines) { introduction = std::move(lines); }

    /// Sends a line to the current reader. The line must end with a line feed. A reader that connects later
    /// receives the introduction and the last line that was sent, but no earlier line.
    void send(const std::string& line);

    /// If the pipe is not open and has a reader, opens the pipe. Then writes the lines that are not written
    /// yet, until the pipe is full. If the reader has closed the pipe, closes it too and drops these lines.
    /// Call this function at short intervals.
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
