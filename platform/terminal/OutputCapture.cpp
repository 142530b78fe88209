#include "platform/terminal/OutputCapture.h"

#include "log/Output.h"

#include <fcntl.h>
#include <string_view>
#include <unistd.h>

namespace Kest::Terminal {
namespace {

constexpr int kFlushMilliseconds = 100;

int redirect(int descriptor, int to)
{
    const int before = fcntl(descriptor, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
    if (before >= 0)
        dup2(to, descriptor);
    return before;
}

void putBack(int descriptor, int before)
{
    if (before < 0)
        return;
    dup2(before, descriptor);
    close(before);
}

bool isBlank(std::string_view line) { return line.find_first_not_of(" \t\r\n") == std::string_view::npos; }

} // namespace

OutputCapture::OutputCapture()
{
    int ends[2];
    if (pipe(ends) != 0)
        return;
    readEnd = ends[0];
    for (const int end : ends) {
        fcntl(end, F_SETFD, FD_CLOEXEC);
        fcntl(end, F_SETFL, O_NONBLOCK);
    }
    Lct::flushOutput(kFlushMilliseconds);
    outputBefore = redirect(STDOUT_FILENO, ends[1]);
    if (isatty(STDERR_FILENO) != 0)
        errorBefore = redirect(STDERR_FILENO, ends[1]);
    close(ends[1]);
}

OutputCapture::~OutputCapture()
{
    Lct::flushOutput(kFlushMilliseconds);
    putBack(STDOUT_FILENO, outputBefore);
    putBack(STDERR_FILENO, errorBefore);
    if (readEnd >= 0)
        close(readEnd);
}

const std::string& OutputCapture::lastLine()
{
    char bytes[4096];
    ssize_t count = 0;
    const auto take = [this](std::string_view line) {
        if (!isBlank(line))
            last = line;
    };
    while ((count = read(readEnd, bytes, sizeof bytes)) > 0)
        lines.feed({bytes, static_cast<std::size_t>(count)}, take, take);
    take(lines.unfinished()); // some lines are never ended
    return last;
}

} // namespace Kest::Terminal
