// The bus menu of a host whose buses change, and the host's default bus.
#include "tests/app/Agent.h"

namespace {

using namespace Kest::Test;
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
    bool shows(const std::vector<std::string>& wanted)
    {
        return agent.pumpUntil([&] { return agent.items("Default Bus") == wanted; });
    }
    /// Returns the host's default bus after a choice.
    std::string choose(const std::string& name)
    {
        EXPECT_TRUE(agent.choose("Default Bus/" + name));
        EXPECT_TRUE(agent.seen("Default Bus/" + name).on);
        return host.textAt(3458152);
    }

    Agent agent;
    RawSegment& host = agent.place.startHost();
};

TEST_F(DefaultBusMenu, FollowsTheBusesOfTheHostAndTheChoice)
{
    captureOutput();
    agent.start();
    EXPECT_TRUE(shows({"Main Bus 0*"}));
    EXPECT_THAT(capturedOutput(), testing::Not(testing::HasSubstr("bus")));
    putBuses({"Zeta", "Alpha"});
    EXPECT_TRUE(shows({"Main Bus 0*", "- 0", "Alpha 1", "Zeta 2"}));
    const auto ids = agent.ids("Default Bus");
    EXPECT_EQ(choose("Zeta"), "bus-5");
    EXPECT_TRUE(shows({"Main Bus 0", "- 0", "Alpha 1", "Zeta 2*"}));
    EXPECT_EQ(agent.ids("Default Bus"), ids);

    host.removeClient(6);
    EXPECT_TRUE(shows({"Main Bus 0", "- 0", "Zeta 1*"}));
    EXPECT_EQ(choose("Main Bus"), "bus-5") << "no bus has that name";
}

TEST_F(DefaultBusMenu, PassesMacRomanNamesOfTwoCharactersOnAndPrintsThem)
{
    const std::string name = "Caf\u00E9 \uF8FF";
    agent.start();
    captureOutput();
    putBuses({"Caf\x8E \xF0", "X", "\x80", "A \x1B[31m\n\xC2\x9B", "Caf\xC3\xA9"});
    ASSERT_TRUE(agent.pumpUntil([&] { return agent.items("Default Bus").size() == 7; }));
    EXPECT_EQ(choose(name), "bus-5");
    EXPECT_EQ(choose("X"), "bus-5");
    EXPECT_EQ(choose("Ä"), "bus-5") << "one character, whatever its bytes";
    EXPECT_THAT(capturedOutput(),
                testing::EndsWith("bus 0 : Main Bus\nbus 1 : A ?[31m??\nbus 2 : Café \uF8FF\n"
                                  "bus 3 : Café\nbus 4 : X\nbus 5 : Ä\n\n"))
        << "UTF-8 as it is, other bytes as the menu shows them";
}

TEST_F(DefaultBusMenu, ShowsTheBusesOfAMessageThatAnotherOneReplaced)
{
    agent.delegate.awakeFromNib();
    putBuses({"Zeta"});
    ASSERT_TRUE(eventually([&] { return agent.frontEnd.hasJobs(); }));
    msg_from_backend_callback(&agent.delegate, 100, 0, "");
    EXPECT_TRUE(shows({"Main Bus 0*", "- 0", "Zeta 1"}));
}

} // namespace
