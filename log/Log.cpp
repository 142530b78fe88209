#include "log/Log.h"

#include "log/OutputQueue.h"
#include "log/RepeatLimiter.h"

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <ctime>
#include <mutex>
#include <string_view>
#include <sys/time.h>

namespace Lct {
namespace {

constexpr std::size_t kLineBytes = 512;

struct Message {
    Message(const char* format, va_list arguments) { std::vsnprintf(text, sizeof text, format, arguments); }
    char text[kLineBytes] = {};
};

const char* token(eLogLevel level) { return level == eLogError ? "<ERRO>" : "<WARN>"; }

void timeStamp(char (&out)[100])
{
    timeval now{};
    gettimeofday(&now, nullptr);
    tm local{};
    localtime_r(&now.tv_sec, &local);
    char date[64];
    if (std::strftime(date, sizeof date, "%Y-%m-%d %H:%M:%S", &local) == 0)
        date[0] = '\0';
    std::snprintf(out, sizeof out, "%s.%06d", date, static_cast<int>(now.tv_usec));
}

// Seconds of a clock that is never set.
std::int64_t secondsNow()
{
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return now.tv_sec;
}

std::optional<unsigned> admit(const char* format, std::string_view message)
{
    static std::mutex mutex;
    static RepeatLimiter limiter;
    const std::lock_guard lock(mutex);
    return limiter.admit(format, message, secondsNow());
}

void write(eLogLevel level, const char* tag, const char* message, unsigned omitted)
{
    char stamp[100];
    timeStamp(stamp);
    char note[64] = "";
    if (omitted > 0)
        std::snprintf(note, sizeof note, " (%u similar lines left out)", omitted);
    char line[kLineBytes];
    const int wanted =
        std::snprintf(line, sizeof line, "%s %s %s %s%s\n", stamp, token(level), tag, message, note);
    const auto length = std::min(static_cast<std::size_t>(std::max(wanted, 0)), sizeof line - 1);
    if (length == sizeof line - 1)
        line[length - 1] = '\n';
    for (auto* queue : {&standardError(), &standardOutput(), &systemLog()})
        queue->add({line, length});
}

thread_local CollectedAnswers* collector = nullptr;

} // namespace

CollectedAnswers::CollectedAnswers() : before(collector) { collector = this; }

CollectedAnswers::~CollectedAnswers() { collector = before; }

void Log(eLogLevel level, const char* tag, const char* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    const Message message(format, arguments);
    va_end(arguments);
    if (const auto omitted = admit(format, message.text))
        write(level, tag, message.text, *omitted);
}

void LogAnswer(eLogLevel level, const char* tag, const char* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    const Message message(format, arguments);
    va_end(arguments);
    if (collector != nullptr)
        collector->collected.emplace_back(message.text);
    write(level, tag, message.text, 0);
}

} // namespace Lct
