// The logger's line, to the byte: on both streams and in the system log.
#include "log/Log.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <string>
#include <sys/time.h>
#include <syslog.h>

namespace {

int microseconds = 0;
std::string systemLog;

} // namespace

// This program's own clock and system log, in place of the C library's.
// NOLINTNEXTLINE(readability-inconsistent-declaration-parameter-name): the library's are reserved names
extern "C" int gettimeofday(timeval* time, void* /*zone*/) noexcept(noexcept(gettimeofday(time, nullptr)))
{
    *time = {1772373909, microseconds}; // 2026-03-01 14:05:09
    return 0;
}

// NOLINTNEXTLINE(readability-inconsistent-declaration-parameter-name)
extern "C" void syslog(int priority, const char* format, ...)
{
    char text[8192];
    va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(text, sizeof text, format, arguments);
    va_end(arguments);
    systemLog = std::to_string(priority) + " " + text;
}

namespace {

/// What reaches the standard error stream, and with it the two other places.
std::string written(const std::string& tag, const std::string& message)
{
    setenv("TZ", "UTC0", 1);
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    Lct::Log(Lct::eLogError, tag.c_str(), "%s", message.c_str());
    auto line = testing::internal::GetCapturedStderr();
    EXPECT_EQ(testing::internal::GetCapturedStdout(), line);
    EXPECT_EQ(systemLog, "4 " + line);
    return line;
}

TEST(Log, WritesTimeLevelTagAndMessageSeparatedBySingleBlanks)
{
    microseconds = 4211;
    EXPECT_EQ(written("shmKey", "Could not create key"),
              "2026-03-01 14:05:09.004211 <ERRO> shmKey Could not create key\n");
    EXPECT_EQ(written("", "message"), "2026-03-01 14:05:09.004211 <ERRO>  message\n");
    EXPECT_EQ(written("100%s", "50% %s %n"), "2026-03-01 14:05:09.004211 <ERRO> 100%s 50% %s %n\n");
    microseconds = 0;
    EXPECT_EQ(written("tag", "m"), "2026-03-01 14:05:09.000000 <ERRO> tag m\n");
    microseconds = 999999;
    EXPECT_EQ(written("tag", "m"), "2026-03-01 14:05:09.999999 <ERRO> tag m\n");
}

TEST(Log, CutsWhatDoesNotFitAndKeepsTheLineFeed)
{
    microseconds = 4211;
    const std::string head = "2026-03-01 14:05:09.004211 <ERRO> tag ";
    const std::size_t room = 511 - head.size() - 1;
    for (const auto length :
         {room - 1, room, room + 1, std::size_t{511}, std::size_t{512}, std::size_t{5000}})
        EXPECT_EQ(written("tag", std::string(length, 'x')),
                  head + std::string(std::min(length, room), 'x') + "\n");
    EXPECT_EQ(written(std::string(600, 't'), "m").size(), 511u);
}

} // namespace
