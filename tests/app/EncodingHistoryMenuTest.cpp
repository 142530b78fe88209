#include "app/EncodingHistoryMenu.h"

#include "tests/app/Agent.h"

namespace {

using namespace Kest::App;
using namespace Kest::Test;
using Kest::Settings::identifyProcess;
using Kest::Settings::ProcessIdentity;
using testing::ElementsAre;

TEST(EncodingName, HasNoTag)
{
    const std::pair<const char*, const char*> cases[] = {
        {"Film_Mix_Print", "Film_Mix"},
        {"Film_Print_Mix", "Film_Print"},
        {"a_xyz", "a"},
        {"é_äöü", "é"}, // characters, not bytes
        {"七人の侍", "七人の侍"},
        {"七人", "七人"}, // its length is counted in bytes
    };
    for (const auto& [description, name] : cases)
        EXPECT_EQ(encodingName(description), name);
    EXPECT_EQ(plainLabel({.tag = 7, .encoding = EncodingState{encodingName("_xyz"), 0}}), "Process 7  0%");
    EXPECT_EQ(plainLabel({.tag = 7, .encoding = EncodingState{encodingName("_xyz"), {}, true}}), " - Failed");
}

// Replaces ending encoders and deleting folders. Its threads may outlive the test.
struct FakeAborts {
    std::string abortOne(const AbortRequest& request, const std::atomic<bool>& stop)
    {
        {
            const std::lock_guard lock(mutex);
            requests.push_back(request);
        }
        eventually([&] { return !blocked || (stop && request.process.pid != stuckPid); });
        ++ended;
        return stop ? "stopped" : isRefused ? "refused" : "";
    }

    std::mutex mutex;
    std::vector<AbortRequest> requests;
    std::atomic<int> ended = 0;
    std::atomic<bool> blocked = false; // until a stop is requested
    std::atomic<int> stuckPid = 0;     // blocked even then
    std::atomic<bool> isRefused = false;
};

class EncodingHistory : public testing::Test {
protected:
    EncodingHistory() { agent.start(); }
    ~EncodingHistory() override { aborts->blocked = false; }
    void receive(int number, int pid, const char* name)
    {
        agent.delegate.receivedMsgFromBackend(number, pid, name);
    }
    MenuItem& actionOf(int pid, int tag) { return *agent.entry(pid)->submenu()->itemWithTag(tag); }
    bool show(int pid) { return agent.delegate.choose(actionOf(pid, 1).id()); }
    bool abort(int pid) { return agent.delegate.choose(actionOf(pid, 2).id()); }
    bool mayBeAborted(int pid) { return actionOf(pid, 2).properties().enabled; }
    bool appears(int pid)
    {
        return agent.pumpUntil([&] { return agent.entry(pid) != nullptr; });
    }
    bool disappears(int pid)
    {
        return agent.pumpUntil([&] { return agent.entry(pid) == nullptr; });
    }
    const EncodingState& view(int pid) { return *agent.entry(pid)->properties().encoding; }
    bool mayBeCleared() { return agent.properties(history + "/Clear History").enabled; }
    bool clear() { return agent.choose(history + "/Clear History"); }

    const std::shared_ptr<FakeAborts> aborts = std::make_shared<FakeAborts>();
    Agent agent{{}, [aborts = aborts](const AbortRequest& request, const std::atomic<bool>& stop) {
                    return aborts->abortOne(request, stop);
                }};
    const std::string history = "Encoding History";
};

TEST_F(EncodingHistory, HasARowForEachRecordOfTheBackendAndNoOther)
{
    const int first = 5'000'000; // no process has such an id
    const int finished = first + 5000;
    const int count = 10'500; // the table evicts 1001 of them
    const auto report = [&](int pid, int percentage) {
        const auto begin = "pid: " + std::to_string(pid);
        agent.send(begin + " , path: /Volumes/Out/" + begin + "/Reel_Mix_Print.wav\n" + begin +
                   " , enc_type: Main\n" + begin + " , P: " + std::to_string(percentage) + "\n");
    };
    receive(50, 4711, "no record at all");
    for (int pid = first; pid < first + count; ++pid) {
        report(pid, pid == finished ? 100 : 50);
        if (pid == first + 100) { // shown before it is evicted
            ASSERT_TRUE(appears(pid));
        }
    }
    ASSERT_TRUE(appears(first + count - 1));
    EXPECT_EQ(agent.items(history).size(), 2U + count - 1001U);
    EXPECT_TRUE(agent.entry(4711) == nullptr && agent.entry(finished) == nullptr &&
                agent.entry(first + 999) == nullptr && agent.entry(first + 1000) != nullptr);
    receive(50, first, "its message comes later");
    EXPECT_EQ(agent.entry(first), nullptr);

    ASSERT_TRUE(clear());
    report(first + 2000, 60);
    ASSERT_TRUE(appears(first + 2000));
    EXPECT_EQ(agent.items(history).size(), 3U) << "what was cleared is not shown again";
}

TEST_F(EncodingHistory, ShowsTheLatestStateOfEachEncoding)
{
    EXPECT_FALSE(mayBeCleared() || clear());
    receive(50, 4711, "Film_Mix_Prt");
    receive(0, 4712, "Other");
    EXPECT_THAT(agent.items(history), ElementsAre("Clear History 0", "- 0", "Film_Mix 4711", "Other 4712"));
    EXPECT_EQ(view(4711), (EncodingState{"Film_Mix", 50}));
    EXPECT_TRUE(mayBeAborted(4711) && mayBeCleared());

    receive(-1, 4711, "Film_Mix_Prt");
    EXPECT_EQ(view(4711), (EncodingState{"Film_Mix", {}, true}));
    EXPECT_TRUE(mayBeAborted(4711)) << "it may still run";
    receive(100, 4711, "Longer_Name");
    EXPECT_EQ(view(4711), (EncodingState{"Longer_Name", 100}));
    EXPECT_EQ(agent.entry(4711)->title(), "Film_Mix") << "the first title stays";
    EXPECT_FALSE(mayBeAborted(4711) || abort(4711));
    EXPECT_TRUE(mayBeAborted(4712)) << "each has a submenu of its own";
    EXPECT_TRUE(clear());
    EXPECT_THAT(agent.items(history), ElementsAre("Clear History 0", "- 0"));
    EXPECT_FALSE(mayBeCleared());
}

TEST_F(EncodingHistory, ActsOnWhatTheRowShowed)
{
    ASSERT_TRUE(agent.report(4711, "/Out/Film/Film_1.wav"));
    ASSERT_TRUE(agent.report(getpid(), "/Other.wav"));
    ASSERT_TRUE(agent.send("pid: 4711 , path: /Documents/Forged.wav\n"));
    ASSERT_TRUE(agent.report(4713, "", 1)) << "which is read after it";
    EXPECT_TRUE(show(4711) && show(getpid()) && show(4713));
    EXPECT_THAT(agent.workspace.calls, ElementsAre("select /Out/Film", "select /"));
    ASSERT_TRUE(abort(4711) && disappears(4711) && abort(getpid()) && disappears(getpid()));
    const auto& requests = aborts->requests;
    ASSERT_EQ(requests.size(), 2U);
    EXPECT_EQ(requests[0].output + " " + requests[1].output, "/Out/Film/Film_1.wav /Other.wav");
    EXPECT_TRUE(requests[1].process == identifyProcess(getpid()) && requests[1].hadPipeOpen);
    EXPECT_FALSE(requests[0].hadPipeOpen) << "no process has this number";

    ASSERT_TRUE(agent.report(4711, "", 51)) << "one that still reports has a row again";
    EXPECT_EQ(view(4711).name, "Forged");
    receive(52, 4714, "unknown to the backend");
    ASSERT_TRUE(show(4714) && abort(4714) && disappears(4714));
    EXPECT_TRUE(requests[2].process == (ProcessIdentity{4714, 0}) && requests[2].output.empty());
}

TEST_F(EncodingHistory, UsesTheNewestRecordWhateverMessageIsHandled)
{
    ASSERT_TRUE(agent.send("pid: 4711 , path: /Out/A/First.wav\npid: 4711 , P: 10\n"
                           "pid: 4712 , path: /Out/B/Second.wav\npid: 4712 , ERROR:\npid: 4713 , P: 30\n"));
    EXPECT_TRUE(appears(4713));
    EXPECT_EQ(view(4711), (EncodingState{"First", 10}));
    EXPECT_EQ(view(4712), (EncodingState{"Second", {}, true}));
    ASSERT_TRUE(agent.report(4713, "/out/Third.wav", 100));
    receive(95, 4713, "Third");
    EXPECT_EQ(view(4713), (EncodingState{"Third", 100}));

    ASSERT_TRUE(agent.send("pid: 4711 , P: 100\n"));
    ASSERT_TRUE(agent.frontEnd.awaitJob()) << "the row does not show it yet";
    EXPECT_TRUE(abort(4711));
    EXPECT_EQ(view(4711), (EncodingState{"First", 100}));
    EXPECT_FALSE(mayBeAborted(4711));
    agent.delegate.applicationWillTerminate();
    EXPECT_TRUE(aborts->requests.empty()) << "of an encoding that has just finished";
}

TEST_F(EncodingHistory, KeepsARowUntilItsAbortIsComplete)
{
    receive(50, 4711, "Film_Mix_Prt");
    receive(50, 4712, "Other");
    aborts->blocked = aborts->isRefused = true;
    ASSERT_TRUE(abort(4711));
    EXPECT_FALSE(mayBeAborted(4711) || abort(4711)) << "a second click";
    receive(-1, 4711, "Film_Mix_Prt");
    EXPECT_FALSE(mayBeAborted(4711)) << "a message meanwhile";
    EXPECT_EQ(view(4711).title(), "Film_Mix - Failed");
    EXPECT_TRUE(abort(4712)) << "another one beside it";
    receive(100, 4712, "Other");
    aborts->blocked = false;
    ASSERT_TRUE(agent.pumpUntil([&] { return aborts->ended == 2 && mayBeAborted(4711); })) << "it failed";

    aborts->blocked = true;
    aborts->isRefused = false;
    ASSERT_TRUE(abort(4711) && clear());
    receive(70, 4711, "Film_Mix_Prt");
    receive(100, 4712, "Other");
    EXPECT_FALSE(mayBeAborted(4711)) << "in a new row";
    aborts->blocked = false;
    EXPECT_TRUE(disappears(4711));
    EXPECT_FALSE(mayBeAborted(4712)) << "it has finished";
}

TEST_F(EncodingHistory, RunsSixteenAbortsAndEndsWithTheAgentWhileADiskHangs)
{
    aborts->stuckPid = 4711;
    aborts->blocked = true;
    captureErrors();
    for (int pid = 4711; pid <= 4711 + 16; ++pid) {
        receive(50, pid, "Film_Mix_Prt");
        ASSERT_TRUE(abort(pid));
        EXPECT_EQ(mayBeAborted(pid), pid == 4711 + 16);
    }
    const auto begin = std::chrono::steady_clock::now();
    agent.delegate.applicationWillTerminate();
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(3));
    const auto log = capturedErrors();
    for (const auto* line : {"encoding 4727: 16 aborts are running; try again when one has ended",
                             "encoding 4711: not complete when the agent ended", "encoding 4712: stopped"})
        EXPECT_THAT(log, testing::HasSubstr(line));
}

} // namespace
