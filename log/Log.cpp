#include "log/Log.h"

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <ctime>
#include <sys/time.h>
#include <syslog.h>

namespace Lct {
namespace {

constexpr std::size_t kLineBytes = 512;

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

} // namespace

void Log(eLogLevel level, const char* tag, const char* format, ...)
{
    char message[kLineBytes];
    va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(message, sizeof message, format, arguments);
    va_end(arguments);

    char stamp[100];
    timeStamp(stamp);
    char line[kLineBytes];
    const int wanted = std::snprintf(line, sizeof line, "%s %s %s %s\n", stamp, token(level), tag, message);
    const auto length = std::min(static_cast<std::size_t>(std::max(wanted, 0)), sizeof line - 1);
    if (length == sizeof line - 1)
        line[length - 1] = '\n';

    // One write a stream, so that the lines of two threads do not mix within it.
    std::fwrite(line, 1, length, stderr);
    std::fwrite(line, 1, length, stdout);
    // The priority of every level: studios filter their system logs for warnings of this system.
    syslog(LOG_WARNING, "%s", line);
}

} // namespace Lct
