// A real process under test: its lines as they come, what it is told, and how it ends.
#pragma once

#include <mutex>
#include <string>
#include <sys/types.h>
#include <thread>
#include <vector>

namespace Kest::Test {

/// Its standard output and error are read together, line by line. Killed in the destructor if it still runs.
class Process {
public:
    explicit Process(const std::vector<std::string>& command);
    ~Process();
    Process(const Process&) = delete;
    Process& operator=(const Process&) = delete;

    pid_t pid() const { return process; }
    /// Writes a line to its standard input.
    void say(const std::string& line) const;
    void closeInput();
    void signal(int number) const;

    /// Waits until it has printed a line that holds `text`, behind the last line found this way. On time-out
    /// all that it has printed is added to the test's output.
    bool prints(const std::string& text);
    /// Whether any line so far holds `text`.
    bool hasPrinted(const std::string& text) const;
    /// Waits for its end: the exit status, 128 + n for a signal, -1 on time-out.
    int exitStatus();

private:
    void readLines(int output);

    pid_t process = -1;
    int input = -1;
    bool ended = false;
    std::size_t next = 0; // the first line that `prints` has not passed yet
    mutable std::mutex mutex;
    std::vector<std::string> lines;
    std::thread reader;
};

} // namespace Kest::Test
