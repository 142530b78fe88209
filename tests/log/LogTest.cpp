// The logger's line, on both streams.
#include "log/Log.h"

#include <gmock/gmock.h>

namespace {

std::string written(const std::string& tag, const std::string& message)
{
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    Lct::Log(Lct::eLogError, tag.c_str(), "%s", message.c_str());
    auto line = testing::internal::GetCapturedStderr();
    EXPECT_EQ(testing::internal::GetCapturedStdout(), line);
    return line;
}

TEST(Log, WritesTimeLevelTagAndMessageSeparatedBySingleBlanks)
{
    EXPECT_THAT(written("100%s", "50% %s %n"),
                testing::MatchesRegex("[0-9]{4}-[0-9]{2}-[0-9]{2} [0-9]{2}:[0-9]{2}:[0-9]{2}\\.[0-9]{6} "
                                      "<ERRO> 100%s 50% %s %n\n"));
}

TEST(Log, CutsWhatDoesNotFitAndKeepsTheLineFeed)
{
    const auto room = 511 - written("tag", "").size();
    for (const auto length : {room, room + 1, std::size_t{5000}})
        EXPECT_THAT(written("tag", std::string(length, 'x')),
                    testing::EndsWith(" tag " + std::string(std::min(length, room), 'x') + "\n"));
    EXPECT_EQ(written(std::string(600, 't'), "m").size(), 511u);
}

} // namespace
