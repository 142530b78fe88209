#include "tests/app/Agent.h"

#include <semaphore>

namespace {

using namespace Kest::App;
using namespace Kest::Test;
using testing::ElementsAre;

TEST(MessageSlot, ReturnsTheLastMessageOnceWithATextCutAtACharacter)
{
    MessageSlot slot;
    for (const auto* description : {"\xC3", "Zażółć €😀"})
        EXPECT_EQ(slot.queueMsgFromBackend(2, 20, description), *description == '\xC3');
    const auto message = slot.take().value();
    EXPECT_TRUE(message.number == 2 && message.type == 20 && message.description == "Zażółć €😀");
    EXPECT_FALSE(slot.take());
    EXPECT_EQ(descriptionText(nullptr) + descriptionText("name \xC3"), "");
    for (std::size_t letters = 1017; letters <= 1023; ++letters) {
        const auto text = std::string(letters, 'a') + "€bcdefg";
        const auto kept = letters <= 1019 ? 1022 : std::min<std::size_t>(letters, 1022);
        EXPECT_EQ(descriptionText(text.c_str()), text.substr(0, kept)) << letters;
    }
}

TEST(MessageSlot, LosesNoWakeUpAndReturnsNothingTwice)
{
    constexpr int kMessages = 20000;
    MessageSlot slot;
    std::counting_semaphore<> jobs(0);
    std::thread sender([&] {
        for (int number = 1; number <= kMessages; ++number)
            if (slot.queueMsgFromBackend(number, 1, std::to_string(number).c_str()))
                jobs.release();
    });
    int last = 0;
    while (last < kMessages && jobs.try_acquire_for(std::chrono::seconds(20)))
        while (const auto message = slot.take()) {
            EXPECT_GT(message->number, std::exchange(last, message->number)) << "returned twice";
            EXPECT_EQ(message->description, std::to_string(last)) << "of two messages";
        }
    sender.join();
    EXPECT_EQ(last, kMessages) << "the last one was lost";
}

class BackendMessages : public testing::Test {
protected:
    BackendMessages()
    {
        agent.start();
        changes = agent.frontEnd.changes;
    }
    void call(const std::vector<int>& numbers, int pid = 0)
    {
        for (const int number : numbers)
            msg_from_backend_callback(&agent.delegate, number, pid, nullptr);
    }

    Agent agent;
    const std::vector<std::string>& notes = agent.delegate.notes;
    int changes = 0;
};

TEST_F(BackendMessages, AreOneJobForTheLastAndForTheOneThatArrivesMeanwhile)
{
    agent.delegate.whenNotified = [&] {
        agent.choose(notes.size() == 1 ? "DAW Link Control" : "Solo Mode/Exclusive (XOR)");
        if (notes.size() == 1)
            call({2});
    };
    call({-5, -2, -7});
    msg_from_backend_callback(nullptr, -2, 0, "");
    EXPECT_EQ(agent.frontEnd.runJobs(), 1U);
    EXPECT_THAT(notes, ElementsAre("No volume information is received", "Linking..."));
    EXPECT_EQ(agent.frontEnd.changes, changes + 1) << "once a job";
    agent.frontEnd.runJobs();
    EXPECT_EQ(notes.size(), 2U) << "handled twice";
}

TEST_F(BackendMessages, LeaveTheirStatusNumberForAMessageOfAnotherKind)
{
    call({-5, -2});
    call({50}, 4711);
    agent.frontEnd.runJobs();
    EXPECT_THAT(notes, ElementsAre("Press play to relink")) << "the newest one of them";
    EXPECT_NE(agent.entry(4711), nullptr);
    call({-5, 3});
    agent.frontEnd.runJobs();
    call({-5, 3, 100});
    agent.frontEnd.runJobs();
    EXPECT_THAT(notes,
                ElementsAre("Press play to relink", "Audio is received on the Kest-Mixing Engine input bus"));
}

TEST_F(BackendMessages, AreAlsoAStateThatHoldsUntilTheHostStops)
{
    using Kest::Settings::HostPresence;
    const auto becomes = [this](HostPresence presence, int message) {
        return agent.pumpUntil([&] {
            const auto& host = agent.delegate.hostState();
            return host.presence == presence && host.message == message;
        });
    };
    auto& host = agent.system.startHost();
    ASSERT_TRUE(becomes(HostPresence::present, 0));
    host.put(RawSegment::slot(TestPaths::kAgentSlot) + 300, 5.0F);
    ASSERT_TRUE(agent.report(4711, ""));
    ASSERT_TRUE(becomes(HostPresence::present, 5));
    EXPECT_EQ(agent.frontEnd.hostChanges, 2);
    agent.system.stopHost();
    ASSERT_TRUE(becomes(HostPresence::absent, 0));
    EXPECT_EQ(agent.frontEnd.hostChanges, 3);
    EXPECT_LE(agent.frontEnd.changes, changes + 1) << "for the encoding, and none for the host";
}

TEST_F(BackendMessages, ReachTheNotificationHookOnlyWhenTheyAreForTheUser)
{
    for (int number = -12; number <= 120; ++number)
        agent.delegate.receivedMsgFromBackend(number, number == 3 ? -1 : 0, "ignored");
    agent.delegate.receivedMsgFromBackend(2, -1, "of a negative type");
    EXPECT_THAT(notes, ElementsAre("No volume information is received",
                                   "Audio is received on the Kest-Mixing Engine input bus",
                                   "Press play to relink", "Linking..."));
    EXPECT_EQ(agent.frontEnd.changes, changes) << "none changes the menu";
}

} // namespace
