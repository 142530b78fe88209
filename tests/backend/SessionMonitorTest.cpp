#include "tests/backend/BackendFixture.h"

#include <cmath>

namespace {

using namespace Kest::Test;
using Kest::Settings::HostPresence;
using Kest::Settings::HostState;

const std::string kBusListChanged = "3 0 ''";
constexpr std::size_t kDefaultBus = 3458152;

class SessionMonitor : public BackendTest {
protected:
    void post(float message) { system.session->put(agentByte(300), message); }
    bool reaches(HostPresence presence) const
    {
        return eventually([&] { return backend->hostState().presence == presence; });
    }
};

TEST_F(SessionMonitor, SendsEachNewMessageOfTheHostOnceAndRounded)
{
    system.startHost();
    start();
    for (const float message : {NAN, INFINITY, 3e9F, -7.0F, -7.0F, 1.0F, 2.5F, 3.4F, -2.5F, 0.49999997F}) {
        post(message);
        awaitPasses();
    }
    EXPECT_THAT(received(), ElementsAre("-7 0 ''", "1 0 ''", "3 0 ''", "-3 0 ''", "0 0 ''"));

    auto* listener = backend->messageCallback.exchange(nullptr);
    post(-9);
    awaitPasses();
    backend->messageCallback = listener;
    awaitPasses();
    EXPECT_THAT(received(), ElementsAre()) << "a message without a callback is not sent later";
}

TEST_F(SessionMonitor, BeginsWhenItsOwnerIsReady)
{
    system.startHost();
    start(1h);
    EXPECT_EQ(backend->hostState().presence, HostPresence::absent);
    backend->beginMonitoring();
    EXPECT_TRUE(reaches(HostPresence::present));
}

TEST_F(SessionMonitor, ReportsABusOnceThatIsNewRenamedReplacedOrGone)
{
    auto& session = system.startHost();
    start();
    const std::function<void()> changes[] = {
        [&] { session.putBus(10, "bus-1", "Bus A"); },
        [&] { session.putText(RawSegment::slot(10) + 72, "Bus B"); },
        [&] { session.putText(RawSegment::slot(10), "bus-2"); },
        [&] { session.removeClient(10); },
    };
    for (const auto& change : changes) {
        received();
        change();
        awaitPasses(2);
        EXPECT_THAT(received(), ElementsAre(kBusListChanged)) << &change - changes;
    }
}

TEST_F(SessionMonitor, ShowsTheOtherBusesWhileOneIsRenamedAllTheTime)
{
    auto& session = system.startHost();
    std::atomic<bool> isDone = false;
    session.putBus(10, "bus-1", "AAAA");
    std::thread renaming([&] {
        for (int n = 0; !isDone; ++n) {
            session.put(RawSegment::slot(10) + 72, 0x41414141 + n % 26 + (n / 26 % 26 << 8));
            std::this_thread::sleep_for(20us);
        }
    });
    start();
    for (const auto* name : {"Dialog", "Music"}) {
        session.putBus(11, "id", name);
        awaitPasses(3);
        EXPECT_THAT(busNames(), testing::Contains(name));
    }
    isDone = true;
    renaming.join();
}

TEST_F(SessionMonitor, FollowsAHostThatStartsEndsAndRestartsBetweenTwoPasses)
{
    start(50ms);
    EXPECT_EQ(backend->hostState(), HostState());
    system.startHost().putBus(10, "bus-1", "Dialog");
    EXPECT_THAT(received(1), ElementsAre(kBusListChanged));
    post(-7);
    EXPECT_THAT(received(1), ElementsAre("-7 0 ''"));
    const auto before = backend->hostState();
    const int changesBefore = hostChanges;
    EXPECT_EQ(before.message, -7);

    system.startHost().putBus(10, "bus-1", "Dialog");
    post(-7);
    EXPECT_TRUE(eventually([&] {
        const auto host = backend->hostState();
        return host.session != before.session && host.message == -7;
    }));
    EXPECT_GT(hostChanges, changesBefore);
    system.stopHost();
    EXPECT_TRUE(eventually([&] { return backend->hostState() == HostState(); }));
    EXPECT_THAT(received(), ElementsAre()) << "neither the same number nor the end is a message";
    EXPECT_THAT(busNames(), ElementsAre("Main Bus", "Dialog"));
    system.startHost(); // with no bus, and message 0
    EXPECT_THAT(received(2), testing::UnorderedElementsAre(kBusListChanged, "0 0 ''"));
}

TEST_F(SessionMonitor, ChecksAWordSizeUntilItIsPublishedAndRefreshesTheKeyFilesOfARefusedHost)
{
    const auto& session = system.startHost(0);
    start();
    ASSERT_TRUE(reaches(HostPresence::present));
    system.publish(64);
    awaitPasses();
    system.publish(32); // too late: it was accepted
    awaitPasses();
    backend->setSoloMode(1);
    system.publish(0);
    start(1us);
    ASSERT_TRUE(reaches(HostPresence::present));
    const int before = hostChanges;
    system.publish(32);
    EXPECT_TRUE(reaches(HostPresence::refused));
    EXPECT_TRUE(eventually([&] { return hostChanges == before + 1; }));
    backend->setSoloMode(2);
    EXPECT_EQ(session.at<float>(agentByte(160)), 1);
    for (const auto& name : {system.versionKeyFile.path, keyFile}) {
        const auto old = fs::file_time_type::clock::now() - 2h;
        fs::last_write_time(name, old);
        ASSERT_TRUE(eventually([&] { return fs::last_write_time(name) > old; })) << name;
    }
}

TEST_F(SessionMonitor, ListsTheMainBusFirstAndTheOthersByByteAndReportsTwoOfOneNameInEveryPass)
{
    auto& session = system.startHost();
    const std::string macRoman = "\x8E\x9F\xCA"; // bytes that are not UTF-8
    const std::string fullLength(64, 'L');       // no room for a terminator
    int slot = 20;
    for (const auto& label : {"Zeta"s, macRoman, "alpha"s, "Main Bus"s, fullLength, "Alpha"s, "Main"s})
        session.putBus(--slot, "id of " + label, label);
    session.putBus(20, "another id", "Zeta");
    start();
    EXPECT_THAT(received(6), testing::Each(kBusListChanged));
    EXPECT_THAT(busNames(), ElementsAre("Main Bus", "Alpha", fullLength, "Main", "Zeta", "alpha", macRoman));

    for (const auto& name : {macRoman, fullLength, "Zeta"s, "Main Bus"s}) {
        std::fill_n(session.bytes() + kDefaultBus, 65, static_cast<unsigned char>(0xEE));
        auto wanted = sessionBytes();
        auto id = ("id of " + name).substr(0, 64);
        id.resize(65);
        wanted.replace(kDefaultBus, 65, id);
        backend->setDefaultKestBus(name.c_str());
        EXPECT_TRUE(sessionBytes() == wanted) << name;
    }
    for (const char* none : {static_cast<const char*>(nullptr), "Music", "", "bus"})
        backend->setDefaultKestBus(none);
    EXPECT_EQ(session.textAt(kDefaultBus), "id of Main Bus");
    system.stopHost();
    backend->setDefaultKestBus("Zeta"); // without a host, and not remembered
    EXPECT_EQ(system.startHost().textAt(kDefaultBus), "");
}

} // namespace
