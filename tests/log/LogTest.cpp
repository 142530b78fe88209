// The logger's line on both streams, and what happens when nobody reads them or lines repeat.
#include "log/Log.h"

#include "log/Output.h"
#include "log/OutputQueue.h"
#include "log/RepeatLimiter.h"
#include "tests/support/Captured.h"
#include "tests/support/Eventually.h"

#include <gmock/gmock.h>

#include <atomic>
#include <csignal>
#include <fcntl.h>
#include <thread>
#include <unistd.h>

namespace {

std::string written(const std::string& tag, const std::string& message)
{
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    Lct::Log(Lct::eLogError, tag.c_str(), "%s", message.c_str());
    auto line = Kest::Test::capturedErrors();
    EXPECT_EQ(Kest::Test::capturedOutput(), line);
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

TEST(Log, CountsWhatItLeavesOutInTheNextLineButAnswersEachTime)
{
    testing::internal::CaptureStdout();
    for (const char* text : {"full", "full", "full", "other"})
        Lct::Log(Lct::eLogWarning, "disk", "it is %s", text);
    for (int i = 0; i < 2; ++i)
        Lct::LogAnswer(Lct::eLogError, "abort", "refused");
    EXPECT_THAT(Kest::Test::capturedOutput(),
                testing::MatchesRegex(".* <WARN> disk it is full\n"
                                      ".* <WARN> disk it is other \\(2 similar lines left out\\)\n"
                                      ".* <ERRO> abort refused\n.* <ERRO> abort refused\n"));
}

TEST(Log, WritesARepeatedLineOnceAMinuteWithTheNumberLeftOut)
{
    Lct::RepeatLimiter limiter;
    const char* format = "%s";
    EXPECT_EQ(limiter.admit(format, "full", 0), 0u);
    for (int second = 0; second < 60; ++second)
        EXPECT_EQ(limiter.admit(format, "full", second), std::nullopt) << second;
    EXPECT_EQ(limiter.admit(format, "other", 59), 60u);
    EXPECT_EQ(limiter.admit(format, "full", 60), 0u);
    int written = 0;
    for (int pid = 0; pid < 1000; ++pid)
        written += limiter.admit(format, std::to_string(pid), 61) ? 1 : 0;
    EXPECT_EQ(written, Lct::RepeatLimiter::kMaxLines - 2) << "different texts of one format";
    EXPECT_EQ(limiter.admit("another", "full", 61), 0u);
}

TEST(Output, GoesToAFrontEndThatTakesItButErrorsOnlyFromATerminal)
{
    Kest::Test::captureErrors();
    std::string taken;
    Lct::redirectOutput([&](std::string_view text) { taken += text; });
    Lct::print("bus 0 : Main Bus\n");
    Lct::printError("no session\n");
    Lct::redirectOutput({});
    testing::internal::CaptureStdout();
    Lct::print("bus 1 : Dialog\n");
    EXPECT_EQ(Kest::Test::capturedOutput(), "bus 1 : Dialog\n");
    EXPECT_EQ(taken, "bus 0 : Main Bus\n");
    EXPECT_EQ(Kest::Test::capturedErrors(), "no session\n");
}

std::atomic<bool> isStuck = true;
std::atomic<int> linesWritten = 0;
std::string lastPiece; // read when nothing is being written

void writeWhenFree(std::string_view text)
{
    while (isStuck)
        std::this_thread::yield();
    linesWritten += static_cast<int>(std::ranges::count(text, '\n'));
    lastPiece = text;
}

TEST(OutputQueue, WritesAllToANonBlockingPipeAndGivesUpOnAClosedOne)
{
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    for (const int end : ends)
        ASSERT_EQ(fcntl(end, F_SETFL, O_NONBLOCK), 0);
    const std::string text(200'000, 'x'); // three times what a pipe holds
    std::thread writer([&] { Lct::writeAll(ends[1], text); });
    std::string received;
    EXPECT_TRUE(Kest::Test::eventually([&] {
        char bytes[4096];
        const auto count = read(ends[0], bytes, sizeof bytes);
        received.append(bytes, static_cast<std::size_t>(count > 0 ? count : 0));
        return received.size() == text.size();
    }));
    writer.join();
    close(ends[0]);
    std::signal(SIGPIPE, SIG_IGN);
    Lct::writeAll(ends[1], text);
    close(ends[1]);
}

TEST(OutputQueue, LosesNothingToAnOutputThatIsOnlySlow)
{
    static std::atomic<int> lines = 0;
    auto& queue = *new Lct::OutputQueue([](std::string_view text) {
        std::this_thread::sleep_for(std::chrono::microseconds(100));
        lines += static_cast<int>(std::ranges::count(text, '\n'));
    });
    for (int i = 0; i < 10'000; ++i) // sixteen times what the buffer holds
        queue.add(std::string(99, 'x') + "\n");
    ASSERT_TRUE(queue.flush(5000));
    EXPECT_EQ(lines, 10'000);
}

TEST(OutputQueue, LetsItsCallersGoOnWhenTheOutputIsStuckAndReportsWhatItDropped)
{
    auto& queue = *new Lct::OutputQueue(writeWhenFree); // its thread lives on
    const std::string line(99, 'x');
    for (int i = 0; i < 10'000; ++i)
        queue.add(line + "\n");
    EXPECT_FALSE(queue.flush(1));
    isStuck = false;
    ASSERT_TRUE(queue.flush(5000));
    EXPECT_TRUE(linesWritten > 600 && linesWritten < 700) << linesWritten;
    EXPECT_THAT(lastPiece,
                testing::MatchesRegex("\\([0-9]+ lines of output were dropped: nothing read them\\)\n"));
    queue.add("next\n");
    ASSERT_TRUE(queue.flush(5000));
    EXPECT_EQ(lastPiece, "next\n");
}

} // namespace
