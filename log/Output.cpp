#include "log/Output.h"

#include "log/OutputQueue.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <mutex>
#include <string_view>
#include <syslog.h>
#include <unistd.h>
#include <utility>

namespace Lct {
namespace {

constexpr std::size_t kMaxTextBytes = 4096;
constexpr int kFlushMilliseconds = 100;

void add(OutputQueue& queue, const char* format, va_list arguments)
{
    char text[kMaxTextBytes];
    const int wanted = std::vsnprintf(text, sizeof text, format, arguments);
    if (wanted > 0)
        queue.add({text, std::min(static_cast<std::size_t>(wanted), sizeof text - 1)});
}

struct Redirection {
    std::mutex mutex;
    std::function<void(std::string_view)> sink;
};

// Never destroyed: the queues' threads run until the process ends.
Redirection& redirection()
{
    static auto* const all = new Redirection;
    return *all;
}

void writeToStream(int descriptor, std::string_view text)
{
    {
        auto& [mutex, sink] = redirection();
        const std::lock_guard lock(mutex);
        if (sink && (descriptor == STDOUT_FILENO || isatty(descriptor) != 0))
            return sink(text);
    }
    writeAll(descriptor, text);
}

void writeToSystemLog(std::string_view text)
{
    while (!text.empty()) {
        const auto line = text.substr(0, text.find('\n') + 1);
        // One priority for every level: studios filter their system logs for warnings of this system.
        syslog(LOG_WARNING, "%.*s", static_cast<int>(line.size()), line.data());
        text.remove_prefix(line.empty() ? text.size() : line.size());
    }
}

} // namespace

OutputQueue& standardOutput()
{
    static auto* const queue =
        new OutputQueue([](std::string_view text) { writeToStream(STDOUT_FILENO, text); });
    return *queue;
}

OutputQueue& standardError()
{
    static auto* const queue =
        new OutputQueue([](std::string_view text) { writeToStream(STDERR_FILENO, text); });
    return *queue;
}

OutputQueue& systemLog()
{
    static auto* const queue = new OutputQueue(writeToSystemLog);
    return *queue;
}

void print(const char* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    add(standardOutput(), format, arguments);
    va_end(arguments);
}

void printError(const char* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    add(standardError(), format, arguments);
    va_end(arguments);
}

void printSystemError(const char* what) { printError("%s: %s\n", what, std::strerror(errno)); }

void redirectOutput(std::function<void(std::string_view text)> sink)
{
    flushOutput(kFlushMilliseconds);
    auto& [mutex, current] = redirection();
    const std::lock_guard lock(mutex);
    current = std::move(sink);
}

bool flushOutput(int milliseconds)
{
    using Clock = std::chrono::steady_clock;
    const auto end = Clock::now() + std::chrono::milliseconds(milliseconds);
    bool isWritten = true;
    for (auto* queue : {&standardOutput(), &standardError(), &systemLog()}) {
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(end - Clock::now()).count();
        isWritten = queue->flush(static_cast<int>(std::max<std::int64_t>(left, 0))) && isWritten;
    }
    return isWritten;
}

} // namespace Lct
