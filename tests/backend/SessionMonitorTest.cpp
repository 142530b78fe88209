// What the session monitor tells of the host, and the buses that it finds there.
#include "tests/backend/BackendFixture.h"

#include <cmath>

namespace {

namespace fs = std::filesystem;
using namespace Kest::Test;
using testing::ElementsAre;

const std::string kBusListChanged = "3 0 ''";
constexpr std::size_t kDefaultBus = 3458152;

class SessionMonitor : public BackendTest {
protected:
    void post(float message) { place.session->putFloat(agentByte(300), message); }
};

TEST_F(SessionMonitor, PassesEachNewMessageOfTheHostOnOnceAndRounded)
{
    place.startHost();
    start();
    for (const float message : {NAN, INFINITY, -1e20F, -7.0F, -7.0F, 1.0F, 2.6F, 3.4F, -2.5F, 0.4F}) {
        post(message);
        awaitWholePass();
    }
    EXPECT_THAT(heard(), ElementsAre("-7 0 ''", "1 0 ''", "3 0 ''", "-3 0 ''", "0 0 ''"));

    auto* listener = backend->messageCallback.exchange(nullptr);
    post(-9);
    awaitWholePass();
    backend->messageCallback = listener;
    awaitWholePass();
    EXPECT_EQ(heard().size(), 5u) << "what nobody heard is not told later";
}

TEST_F(SessionMonitor, TellsInEveryPassOfTwoBusesWithOneName)
{
    auto& session = place.startHost();
    session.putBus(10, "bus-1", "Dialog");
    session.putBus(11, "bus-2", "Dialog");
    start();
    EXPECT_THAT(heard(6), testing::Each(kBusListChanged));
    EXPECT_THAT(busNames(), ElementsAre("Main Bus", "Dialog"));
    backend->setDefaultKestBus("Main Bus"); // no bus of that name
    EXPECT_EQ(session.textAt(kDefaultBus), "");
    backend->setDefaultKestBus("Dialog");
    EXPECT_EQ(session.textAt(kDefaultBus), "bus-1");

    session.removeClient(11);
    awaitWholePass();
    forget();
    awaitWholePass();
    EXPECT_THAT(heard(), ElementsAre());
}

TEST_F(SessionMonitor, TellsOnceOfABusThatIsNewRenamedReplacedOrGone)
{
    auto& session = place.startHost();
    start();
    const std::pair<std::function<void()>, std::string> changes[] = {
        {[&] { session.putBus(10, "bus-1", "Bus A"); }, "Bus A"},
        {[&] { session.putText(RawSegment::slot(10) + 72, "Bus B"); }, "Bus B"},
        {[&] { session.putText(RawSegment::slot(10), "bus-2"); }, "Bus B"},
        {[&] { session.removeClient(10); }, "Main Bus"},
    };
    for (const auto& [change, last] : changes) {
        forget();
        change();
        awaitWholePass();
        awaitWholePass();
        EXPECT_THAT(heard(), ElementsAre(kBusListChanged)) << last;
        EXPECT_EQ(busNames().back(), last);
    }
}

TEST_F(SessionMonitor, ShowsTheOtherBusesWhileOneIsRenamedAllTheTime)
{
    auto& session = place.startHost();
    std::atomic<bool> isDone = false;
    session.putBus(10, "bus-1", "AAAA");
    std::thread renaming([&] {
        for (int n = 0; !isDone; ++n) {
            session.putInt(RawSegment::slot(10) + 72,
                           0x41414141 + n % 26 + (n / 26 % 26 << 8) + (n / 676 % 26 << 16));
            std::this_thread::sleep_for(std::chrono::microseconds(20));
        }
    });
    start();
    for (const auto& [slot, name] : {std::pair(11, "Dialog"), std::pair(12, "Music")}) {
        session.putBus(slot, "id of " + std::string(name), name);
        for (int pass = 0; pass < 3; ++pass)
            awaitWholePass();
        EXPECT_THAT(busNames(), testing::Contains(name));
    }
    isDone = true;
    renaming.join();
}

TEST_F(SessionMonitor, FindsAHostThatComesGoesAndComesBack)
{
    start();
    awaitWholePass();
    place.startHost().putBus(10, "bus-1", "Dialog");
    heard(1);
    post(-7);
    EXPECT_THAT(heard(2), ElementsAre(kBusListChanged, "-7 0 ''"));

    place.stopHost();
    awaitWholePass();
    EXPECT_EQ(heard().size(), 2u) << "no host is no news";
    EXPECT_THAT(busNames(), ElementsAre("Main Bus", "Dialog"));
    forget();
    place.startHost(); // with no bus, and message 0
    EXPECT_THAT(heard(2), testing::UnorderedElementsAre(kBusListChanged, "0 0 ''"));
    place.session->putBus(12, "bus-9", "Dialog");
    heard(3);
    backend->setDefaultKestBus("Dialog");
    EXPECT_EQ(place.session->textAt(kDefaultBus), "bus-9");
}

TEST_F(SessionMonitor, KeepsTheHostsStateAndNoticesARestartBetweenTwoPasses)
{
    using Kest::Settings::HostState;
    static std::atomic<int> changes;
    changes = 0;
    start(std::chrono::milliseconds(50));
    backend->hostStateCallback = [](void*) { ++changes; };
    EXPECT_EQ(backend->hostState(), HostState());
    place.startHost();
    post(-7);
    const auto shows = [this](int message) {
        return eventually([&] { return backend->hostState().message == message; });
    };
    ASSERT_TRUE(shows(-7));
    EXPECT_EQ(heard(1).back(), "-7 0 ''");
    const auto before = backend->hostState();
    const int changesBefore = changes;
    awaitWholePass();

    place.stopHost();
    place.startHost();
    post(-7);
    EXPECT_TRUE(eventually([&] { return backend->hostState().session != before.session; }));
    ASSERT_TRUE(shows(-7));
    EXPECT_GT(changes, changesBefore);
    awaitWholePass();
    EXPECT_EQ(heard().size(), 1U) << "the same number is no new message";
    place.stopHost();
    EXPECT_TRUE(eventually([&] { return backend->hostState() == HostState(); }));
}

TEST_F(SessionMonitor, ChecksAWordSizeThatIsNotPublishedYetAgain)
{
    using Kest::Settings::HostPresence;
    const auto reaches = [this](HostPresence presence) {
        return eventually([&] { return backend->hostState().presence == presence; });
    };
    std::atomic<int> changes = 0;
    auto& session = place.startHost(0);
    start();
    ASSERT_TRUE(reaches(HostPresence::present));
    place.publish(64);
    awaitWholePass();
    place.publish(32); // too late: it was accepted
    awaitWholePass();
    backend->setSoloMode(1);
    EXPECT_EQ(session.floatAt(agentByte(160)), 1.0F);

    place.publish(0);
    start();
    ASSERT_TRUE(reaches(HostPresence::present));
    backend->messageContext = &changes; // no message is sent from here on
    backend->hostStateCallback = [](void* context) { ++*static_cast<std::atomic<int>*>(context); };
    Kest::Test::captureOutput();
    place.publish(32);
    EXPECT_TRUE(reaches(HostPresence::refused));
    EXPECT_TRUE(eventually([&] { return changes == 1; }));
    backend->setSoloMode(2);
    EXPECT_EQ(session.floatAt(agentByte(160)), 1.0F);
    EXPECT_THAT(Kest::Test::capturedOutput(),
                testing::HasSubstr("K3DHost running in wrong architecture (32 bits : should be 64 )"));
}

TEST_F(SessionMonitor, LogsOnceThatTheMarkerOfAnExistingSessionWasRemoved)
{
    const auto marker = "/tmp/LIPC_" + place.paths.sessionSegment;
    const MarkerRemover cleanUp(place.paths.sessionSegment + ".removed");
    const auto attached = [this] {
        return backend->hostState().presence == Kest::Settings::HostPresence::present;
    };
    place.startHost();
    start();
    ASSERT_TRUE(eventually(attached));
    Kest::Test::captureErrors();
    fs::rename(marker, marker + ".removed"); // its inode is not used again
    EXPECT_TRUE(eventually([&] { return !attached(); }));
    awaitWholePass();
    place.stopHost();
    awaitWholePass();
    const auto logged = Kest::Test::capturedErrors();
    EXPECT_THAT(logged, testing::HasSubstr(marker + " was removed while its segment still exists"));
    EXPECT_EQ(std::ranges::count(logged, '\n'), 1) << logged;
}

TEST_F(SessionMonitor, RefreshesTheMarkersOfSegmentsThatItDoesNotAttach)
{
    place.startHost(32);
    start(std::chrono::microseconds(1));
    for (const auto& segment : {place.paths.versionSegment, place.paths.sessionSegment}) {
        const auto marker = "/tmp/LIPC_" + segment;
        const auto old = fs::file_time_type::clock::now() - std::chrono::hours(2);
        fs::last_write_time(marker, old);
        ASSERT_TRUE(eventually([&] { return fs::last_write_time(marker) > old; })) << marker;
    }
}

TEST_F(SessionMonitor, ListsTheMainBusFirstAndTheOthersByByte)
{
    auto& session = place.startHost();
    const std::string macRoman = "\x8E\x9F\xCA"; // bytes that are not UTF-8
    const std::string longest(64, 'L');          // no room for a terminator
    int slot = 20;
    const std::vector<std::string> labels{"Zeta", macRoman, "alpha", "Main Bus", longest, "Alpha", "Main"};
    for (const auto& label : labels)
        session.putBus(--slot, "id of " + label, label);
    start();
    awaitWholePass();
    EXPECT_THAT(busNames(), ElementsAre("Main Bus", "Alpha", longest, "Main", "Zeta", "alpha", macRoman));

    for (const auto& name : {macRoman, longest, std::string("Main Bus")}) {
        std::fill_n(session.bytes() + kDefaultBus, 65, static_cast<unsigned char>(0xEE));
        auto wanted = sessionBytes();
        auto id = ("id of " + name).substr(0, 64);
        id.resize(65);
        wanted.replace(kDefaultBus, 65, id);
        backend->setDefaultKestBus(name.c_str());
        EXPECT_TRUE(sessionBytes() == wanted) << name;
    }
    session.putText(kDefaultBus, "before");
    for (const char* none : {static_cast<const char*>(nullptr), "Music", "", "bus"})
        backend->setDefaultKestBus(none);
    EXPECT_EQ(session.textAt(kDefaultBus), "before");
    place.stopHost();
    backend->setDefaultKestBus("Zeta"); // nobody to tell, and not remembered
    EXPECT_EQ(place.startHost().textAt(kDefaultBus), "");
}

} // namespace
