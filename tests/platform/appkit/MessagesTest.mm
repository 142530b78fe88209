// Messages of other threads on their way into AppKit's menu.
#include "tests/platform/appkit/AppKitAgent.h"

namespace Kest::Test {
namespace {

TEST(Messages, OfTwoThreadsAreShownWhileTheMenuIsWorkedOn)
{
    AppKitAgent agent;
    agent.start();
    constexpr int kMessages = 400;
    std::atomic<int> running = 2;
    const auto sendAll = [&](int firstPid) {
        for (int i = 0; i <= kMessages; ++i) {
            msg_from_backend_callback(&agent.delegate, i * 100 / kMessages, firstPid + i % 5, "Film_Mix_Prt");
            std::this_thread::sleep_for(std::chrono::microseconds(100));
        }
        --running;
    };
    std::thread one(sendAll, 4000);
    std::thread two(sendAll, 5000);
    const std::string history = "Encoding History";
    while (running > 0) {
        agent.open(history);
        runLoop(NSEventTrackingRunLoopMode); // as while a menu is open
        agent.choose("Solo Mode/Latch");
        agent.choose("DAW Link Control");
        agent.close(history);
        runLoop();
        if ([[agent.item(history) submenu] numberOfItems] > 8)
            agent.choose(history + "/Clear History");
    }
    one.join();
    two.join();
    msg_from_backend_callback(&agent.delegate, 99, 6000, "Last_One_Prt");
    EXPECT_TRUE(agent.pumpUntil([&] { return agent.entry(6000) != nullptr; }));
    EXPECT_EQ(agent.menuLines(), agent.modelLines());
}

TEST(Jobs, RunInOrderAlsoWhileAMenuOrAPanelIsOpen)
{
    for (NSString* mode in AppKit::workingModes()) {
        LoopingFrontEnd frontEnd;
        std::vector<int> done;
        std::thread([&] {
            for (int i = 0; i < 3; ++i)
                frontEnd.post([&done, i] { done.push_back(i); });
        }).join();
        EXPECT_TRUE(eventually([&] { return runLoop(mode), done.size() == 3; })) << [mode UTF8String];
        EXPECT_THAT(done, testing::ElementsAre(0, 1, 2));
    }
}

TEST(Jobs, ThatThrowAreStoppedAndThoseOfAnEndedFrontEndAreDropped)
{
    bool done = false;
    {
        LoopingFrontEnd frontEnd;
        testing::internal::CaptureStderr();
        frontEnd.post([] { throw std::runtime_error("all is lost"); });
        frontEnd.post([&] { done = true; });
        EXPECT_TRUE(runLoopUntil([&] { return done; }));
        EXPECT_THAT(Kest::Test::capturedErrors(), testing::HasSubstr("a job all is lost"));
        frontEnd.post([&] { done = false; });
    }
    LoopingFrontEnd next;
    bool afterIt = false;
    next.post([&] { afterIt = true; });
    EXPECT_TRUE(runLoopUntil([&] { return afterIt; }));
    EXPECT_TRUE(done);
}

} // namespace
} // namespace Kest::Test
