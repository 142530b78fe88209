// A backend message's way to the main thread, alone and through the application.
#include "tests/app/Agent.h"

#include <semaphore>

namespace {

using namespace Kest::App;
using testing::ElementsAre;

// Handed on in place of an older message, and once.
std::string handedOn(const char* description)
{
    MessageSlot slot;
    EXPECT_TRUE(slot.queueMsgFromBackend(1, 10, "older"));
    EXPECT_FALSE(slot.queueMsgFromBackend(2, 20, description));
    const auto message = slot.take().value();
    EXPECT_TRUE(message.number == 2 && message.type == 20);
    EXPECT_FALSE(slot.take());
    return message.description;
}

TEST(MessageSlot, TakesInvalidTextForNoneAndCutsLongTextAtACharacter)
{
    EXPECT_EQ(handedOn("Zażółć €😀"), "Zażółć €😀");
    EXPECT_EQ(handedOn(nullptr), "");
    for (const char* text : {"\xFF", "name \xC3", "\x80", "\xC0\xAF", "\xED\xA0\x80", "\xF4\x90\x80\x80"})
        EXPECT_EQ(handedOn(text), "") << testing::PrintToString(text);
    for (const std::size_t letters : {1018, 1019, 1021, 1022, 1023}) {
        const auto text = std::string(letters, 'a') + "😀b";
        const auto kept = letters == 1018 ? 1022 : std::min<std::size_t>(letters, 1022);
        EXPECT_EQ(handedOn(text.c_str()), text.substr(0, kept)) << letters;
    }
}

TEST(MessageSlot, LosesNoWakeUpAndHandsNothingOutTwice)
{
    constexpr int kMessages = 20000;
    MessageSlot slot;
    std::counting_semaphore<> jobs(0);
    std::thread sender([&] {
        for (int number = 1; number <= kMessages; ++number)
            if (slot.queueMsgFromBackend(number, 0, std::to_string(number).c_str()))
                jobs.release();
    });
    int last = 0;
    while (last < kMessages && jobs.try_acquire_for(std::chrono::seconds(20)))
        while (const auto message = slot.take()) {
            EXPECT_GT(message->number, std::exchange(last, message->number)) << "handed out twice";
            EXPECT_EQ(message->description, std::to_string(last)) << "of two messages";
        }
    sender.join();
    EXPECT_EQ(last, kMessages) << "the last one was lost";
}

class BackendMessages : public testing::Test {
protected:
    BackendMessages() { agent.start(); }
    void call(int number) { msg_from_backend_callback(&agent.delegate, number, 0, nullptr); }

    Kest::Test::Agent agent;
    const std::vector<std::string>& notes = agent.delegate.notes;
};

TEST_F(BackendMessages, AreOneJobForTheLastAndForTheOneThatComesMeanwhile)
{
    const auto changes = agent.frontEnd.changes;
    agent.delegate.whenNoted = [&] {
        agent.choose("DAW Link Control");
        if (notes.size() == 1)
            call(2);
    };
    for (const int number : {-5, -2, -7})
        call(number);
    msg_from_backend_callback(nullptr, -2, 0, "");
    EXPECT_EQ(agent.frontEnd.runJobs(), 1);
    EXPECT_THAT(notes, ElementsAre("No volume information is received", "Linking..."));
    EXPECT_EQ(agent.frontEnd.changes, changes + 1) << "once a job";
    agent.frontEnd.runJobs();
    EXPECT_EQ(notes.size(), 2U) << "handled twice";
}

} // namespace
