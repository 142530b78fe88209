// Writes an encoder's lines into the named pipe that the agent reads.
#pragma once

#include <deque>
#include <string>
#include <utility>
#include <vector>

namespace EncoderSimulator {

/// Writes each line with one system call and never blocks. The pipe may have no reader, a slow one, or a new
/// one after the first has ended. Opens the pipe only when it has a reader. Never creates the pipe. Never
/// writes to a file at the path that is not a pipe. The process must ignore SIGPIPE. Not synchronised.
class ProgressPipeWriter {
public:
    explicit ProgressPipeWriter(std::string pipePath) : path(std::move(pipePath)) {}
    ~ProgressPipeWriter() { close(); }
    ProgressPipeWriter(const ProgressPipeWriter&) = delete;
    ProgressPipeWriter& operator=(const ProgressPipeWriter&) = delete;

    /// Sets the lines that each new reader receives first. Each must end with a line feed. Call it before
    /// `send`.
    void setIntroduction(std::vector<std::string> lines) { introduction = std::move(lines); }

    /// Sends a line to the current reader, at once or in a later `pump`. The line must end with a line feed.
    /// A later reader receives the introduction and the last line that was sent, but no earlier line.
    void send(const std::string& line);

    /// If the pipe is not open and has a reader, opens the pipe. Then writes the lines that are not written
    /// yet, until the pipe is full. If the reader has closed the pipe, closes it too and drops these lines.
    /// Call this function at short intervals, for example every 50 ms.
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
