#include "log/Log.h"

#include "log/OutputQueue.h"
#include "log/RepeatLimiter.h"
#include "tests/support/Captured.h"
#include "tests/support/TemporaryFolder.h"

#include <gmock/gmock.h>

#include <atomic>
#include <csignal>
#include <fcntl.h>
#include <thread>

namespace {

using namespace Kest::Test;
using testing::MatchesRegex;

std::string written(const std::string& tag, const std::string& message)
{
    captureOutput();
    captureErrors();
    Lct::Log(Lct::eLogError, tag.c_str(), "%s", message.c_str());
    auto line = capturedErrors();
    EXPECT_EQ(capturedOutput(), line);
    return line;
}

TEST(Log, WritesTimeLevelTagAndMessageCutToALine)
{
    EXPECT_THAT(written("100%s", "50% %s %n"),
                MatchesRegex("[0-9]{4}-[0-9]{2}-[0-9]{2} [0-9]{2}:[0-9]{2}:[0-9]{2}\\.[0-9]{6} "
                             "<ERRO> 100%s 50% %s %n\n"));
    const auto room = 511 - written("tag", "").size();
    for (const auto length : {room, room + 1, std::size_t{5000}})
        EXPECT_THAT(written("tag", std::string(length, 'x')),
                    testing::EndsWith(" tag " + std::string(std::min(length, room), 'x') + "\n"));
    EXPECT_EQ(written(std::string(600, 't'), "m").size(), 511u);
}

TEST(Log, CountsWhatItLeavesOutInTheNextLineButAnswersEachTime)
{
    captureOutput();
    for (const char* text : {"full", "full", "full", "other"})
        Lct::Log(Lct::eLogWarning, "disk", "it is %s", text);
    for (int i = 0; i < 2; ++i)
        Lct::LogAnswer(Lct::eLogError, "abort", "refused");
    EXPECT_THAT(capturedOutput(), MatchesRegex(".* <WARN> disk it is full\n"
                                               ".* <WARN> disk it is other \\(2 similar lines left out\\)\n"
                                               ".* <ERRO> abort refused\n.* <ERRO> abort refused\n"));
}

TEST(RepeatLimiter, AdmitsALineOnceAMinuteAndAFormatSomeTimes)
{
    Lct::RepeatLimiter limiter;
    const char* format = "%s";
    EXPECT_EQ(limiter.admit(format, "full", 0), 0u);
    for (int second = 0; second < 60; ++second)
        EXPECT_EQ(limiter.admit(format, "full", second), std::nullopt) << second;
    EXPECT_EQ(limiter.admit(format, "other", 59), 60u);
    EXPECT_EQ(limiter.admit(format, "full", 60), 0u);
    int admitted = 0;
    for (int pid = 0; pid < 1000; ++pid)
        admitted += limiter.admit(format, std::to_string(pid), 61).has_value();
    EXPECT_EQ(admitted, Lct::RepeatLimiter::kMaxLines - 2) << "different texts of one format";
    EXPECT_EQ(limiter.admit("another", "full", 61), 0u);
}

TEST(Output, GoesToAFrontEndThatTakesItButErrorsOnlyFromATerminal)
{
    std::string taken;
    captureErrors();
    Lct::redirectOutput([&](std::string_view text) { taken += text; });
    Lct::print("bus 0 : Main Bus\n");
    Lct::printError("no session\n");
    Lct::redirectOutput({});
    EXPECT_EQ(taken, "bus 0 : Main Bus\n");
    EXPECT_EQ(capturedErrors(), "no session\n");
}

TEST(OutputQueue, WritesAllToANonBlockingPipeAndNothingToAClosedOne)
{
    std::signal(SIGPIPE, SIG_IGN);
    int ends[2];
    ASSERT_TRUE(pipe(ends) == 0 && fcntl(ends[1], F_SETFL, O_NONBLOCK) == 0);
    const std::string text(200'000, 'x'); // three times what a pipe holds
    std::thread writer([&] {
        Lct::writeAll(ends[1], text);
        close(ends[1]);
    });
    EXPECT_TRUE(readFile("/dev/fd/" + std::to_string(ends[0])) == text);
    writer.join();
    close(ends[0]);
    ASSERT_EQ(pipe(ends), 0);
    close(ends[0]);
    Lct::writeAll(ends[1], text); // returns
    close(ends[1]);
}

std::atomic<bool> isStuck = false;
std::atomic<int> linesWritten = 0;
std::string lastPiece; // read when nothing is being written

void writeSlowly(std::string_view text)
{
    do
        std::this_thread::sleep_for(std::chrono::microseconds(100));
    while (isStuck);
    linesWritten += static_cast<int>(std::ranges::count(text, '\n'));
    lastPiece = text;
}

TEST(OutputQueue, LosesNothingToASlowOutputAndReportsWhatItDroppedForAStuckOne)
{
    auto& queue = *new Lct::OutputQueue(writeSlowly); // its thread never ends
    for (const bool stuck : {false, true, false}) {
        linesWritten = 0;
        isStuck = stuck;
        for (int i = 0; i < 10'000; ++i) // sixteen times what the buffer holds
            queue.add(std::string(99, 'x') + "\n");
        EXPECT_FALSE(stuck && queue.flush(1));
        isStuck = false;
        ASSERT_TRUE(queue.flush(5000));
        if (stuck) {
            EXPECT_TRUE(linesWritten > 600 && linesWritten < 700) << linesWritten;
            EXPECT_THAT(lastPiece,
                        MatchesRegex("\\([0-9]+ lines of output were dropped: nothing read them\\)\n"));
        } else
            EXPECT_EQ(linesWritten, 10'000);
    }
}

} // namespace
