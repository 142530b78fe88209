// The way of an encoder's lines into the named pipe of whoever follows encodings.
#pragma once

#include <deque>
#include <string>
#include <utility>
#include <vector>

namespace EncoderSimulator {

/// Sends whole lines, one write each, and never waits: there may be no reader yet, it may read slowly, and it
/// may go and another may come. The pipe is opened when there is a reader and is never created; anything else
/// than a pipe in its place is left alone. SIGPIPE must be ignored by the process.
class ProgressPipe {
public:
    explicit ProgressPipe(std::string pipePath) : path(std::move(pipePath)) {}
    ~ProgressPipe() { close(); }
    ProgressPipe(const ProgressPipe&) = delete;
    ProgressPipe& operator=(const ProgressPipe&) = delete;

    /// What every new reader is told first.
    void setIntroduction(std::vector<std::string> lines) { introduction = std::move(lines); }

    /// Sends a line to the reader that there is. A reader that comes later gets only the last one of them.
    void send(const std::string& line);

    /// Looks for a reader when there is none, and sends what the pipe had no room for. To be called often.
    void pump();

    /// Whether there is a reader that does not have all lines yet.
    bool isBehind() const { return descriptor >= 0 && !unsent.empty(); }

private:
    bool open();
    void close();

    std::string path;
    std::vector<std::string> introduction;
    std::string lastLine; // empty as long as none was sent
    std::deque<std::string> unsent;
    int descriptor = -1;
};

} // namespace EncoderSimulator
