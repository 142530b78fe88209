#include "tools/encoder_simulator/ProgressPipeWriter.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace EncoderSimulator {

void ProgressPipeWriter::send(const std::string& line)
{
    lastLine = line;
    if (descriptor >= 0)
        unsent.push_back(line);
    pump();
}

void ProgressPipeWriter::pump()
{
    if (descriptor < 0 && !open())
        return;
    while (!unsent.empty()) {
        const auto& line = unsent.front();
        const auto written = write(descriptor, line.data(), line.size());
        if (written < 0) {
            // Retries if the pipe is full or the write was interrupted; any other error means that the reader
            // has closed it.
            if (errno != EAGAIN && errno != EINTR)
                close();
            return;
        }
        unsent.pop_front();
    }
}

bool ProgressPipeWriter::open()
{
    // Fails if there is no pipe, or no reader of it.
    descriptor = ::open(path.c_str(), O_WRONLY | O_NONBLOCK | O_NOFOLLOW | O_CLOEXEC);
    struct stat status {};
    if (descriptor < 0)
        return false;
    if (fstat(descriptor, &status) != 0 || !S_ISFIFO(status.st_mode)) {
        close();
        return false;
    }
    unsent.assign(introduction.begin(), introduction.end());
    if (!lastLine.empty())
        unsent.push_back(lastLine);
    return true;
}

void ProgressPipeWriter::close()
{
    if (descriptor >= 0)
        ::close(descriptor);
    descriptor = -1;
    unsent.clear();
}

} // namespace EncoderSimulator
