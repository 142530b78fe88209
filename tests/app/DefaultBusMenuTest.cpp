// The bus menu over a host whose buses come and go, and the bytes of the session's default bus.
#include "tests/app/Agent.h"

namespace {

using namespace Kest::App;
using testing::ElementsAre;

class DefaultBusMenu : public testing::Test {
protected:
    // From slot 5 on; the bus in slot 5 is the client "bus-5".
    void putBuses(const std::vector<std::string>& labels)
    {
        for (int slot = 5; const auto& label : labels) {
            host.putBus(slot, "bus-" + std::to_string(slot), label);
            ++slot;
        }
    }
    std::vector<std::string> items() const { return agent.items("Default Bus"); }
    bool shows(const std::vector<std::string>& wanted)
    {
        return agent.pumpUntil([&] { return items() == wanted; });
    }
    /// The host's default bus after a choice.
    std::string choose(const std::string& name)
    {
        EXPECT_TRUE(agent.choose("Default Bus/" + name));
        EXPECT_TRUE(agent.seen("Default Bus/" + name).on);
        return host.textAt(3458152);
    }

    Kest::Test::Agent agent;
    Kest::Test::RawSegment& host = agent.place.startHost();
};

TEST_F(DefaultBusMenu, FollowsTheBusesOfTheHostAndTheChoice)
{
    agent.start();
    EXPECT_THAT(items(), ElementsAre("Main Bus 0*"));
    putBuses({"Zeta", "Alpha"});
    EXPECT_TRUE(shows({"Main Bus 0*", "- 0", "Alpha 1", "Zeta 2"}));
    const auto ids = agent.ids("Default Bus");
    EXPECT_EQ(choose("Zeta"), "bus-5");
    EXPECT_THAT(items(), ElementsAre("Main Bus 0", "- 0", "Alpha 1", "Zeta 2*"));
    EXPECT_EQ(agent.ids("Default Bus"), ids);

    host.removeClient(6);
    EXPECT_TRUE(shows({"Main Bus 0", "- 0", "Zeta 1*"}));
    EXPECT_EQ(choose("Main Bus"), "bus-5") << "no bus has that name";
}

TEST_F(DefaultBusMenu, HandsMacRomanNamesBackAsTheyWereAndShortOnesNotAtAll)
{
    const std::string name = "Caf\u00E9 \uF8FF";
    putBuses({"Caf\x8E \xF0", "X", "\x80"});
    agent.start();
    ASSERT_TRUE(shows({"Main Bus 0*", "- 0", name + " 1", "X 2", "Ä 3"}));
    EXPECT_EQ(choose(name), "bus-5");
    EXPECT_EQ(choose("X"), "bus-5");
    EXPECT_EQ(choose("Ä"), "bus-5") << "one character, whatever its bytes";
}

TEST_F(DefaultBusMenu, ShowsTheBusesOfAMessageThatAnotherOneReplaced)
{
    agent.delegate.awakeFromNib();
    putBuses({"Zeta"});
    ASSERT_TRUE(Kest::Test::eventually([&] { return agent.frontEnd.pendingJobs() > 0; }));
    msg_from_backend_callback(&agent.delegate, 100, 0, "");
    EXPECT_TRUE(shows({"Main Bus 0*", "- 0", "Zeta 1"}));
}

TEST_F(DefaultBusMenu, PrintsNamesForMessagesOnlyAndInPrintableForm)
{
    Kest::Test::captureOutput();
    agent.start();
    EXPECT_THAT(items(), ElementsAre("Main Bus 0*"));
    EXPECT_THAT(Kest::Test::capturedOutput(), testing::Not(testing::HasSubstr("bus")));
    Kest::Test::captureOutput();
    putBuses({"A \x1B[31m\n\xC2\x9B", "Caf\xC3\xA9", "Caf\x8E \x07"});
    EXPECT_TRUE(agent.pumpUntil([&] { return items().size() == 5; }));
    EXPECT_THAT(Kest::Test::capturedOutput(),
                testing::EndsWith("bus 0 : Main Bus\nbus 1 : A ?[31m??\nbus 2 : Caf\u00E9 ?\n"
                                  "bus 3 : Caf\u00E9\n\n"))
        << "UTF-8 as it is, other bytes as the menu shows them";
}

} // namespace
