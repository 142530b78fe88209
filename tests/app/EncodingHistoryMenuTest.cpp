// Encodings in the menu, and what an abort may kill and remove.
#include "app/EncodingHistoryMenu.h"

#include "app/OutputFolder.h"
#include "tests/app/Agent.h"

#include <climits>

namespace {

using namespace Kest::App;
using testing::ElementsAre;

TEST(EncodingTitle, IsTheNameWithoutItsTag)
{
    EXPECT_EQ(encodingTitle(0, "Film_Mix_Print"), "Film_Mix_Print");
    EXPECT_EQ(encodingTitle(-1, "_xyz"), " - Failed");
    EXPECT_EQ(encodingTitle(0, "é_äöü"), "é") << "characters, not bytes";
}

class EncodingHistory : public testing::Test {
protected:
    EncodingHistory() { agent.start(); }
    void receive(int number, int pid, const char* name)
    {
        agent.delegate.receivedMsgFromBackend(number, pid, name);
    }
    MenuItem& actionOf(int pid, int tag) { return *agent.entry(pid)->submenu()->itemWithTag(tag); }
    bool show(int pid) { return agent.delegate.choose(actionOf(pid, 1).id()); }
    bool abort(int pid) { return agent.delegate.choose(actionOf(pid, 2).id()); }
    bool mayBeAborted(int pid) { return actionOf(pid, 2).properties().enabled; }
    const EntryView& view(int pid) { return *agent.entry(pid)->properties().view; }
    bool mayBeCleared() { return agent.seen(history + "/Clear History").enabled; }

    Kest::Test::Agent agent;
    const std::string history = "Encoding History";
    const std::vector<std::string>& asked = agent.workspace.asked;
};

TEST_F(EncodingHistory, ForgetsTheOldestOnesThatAreOverWhenThereAreTooMany)
{
    receive(50, 1, "running");
    receive(-1, 2, "failed");
    receive(100, 3, "finished");
    const int full = EncodingHistoryMenu::kMostEncodings;
    for (int pid = 4; pid <= full; ++pid)
        receive(pid < 200 ? 100 : 50, pid, "running");
    EXPECT_NE(agent.entry(2), nullptr) << "all that there is room for";
    receive(50, full + 1, "running");
    EXPECT_TRUE(agent.entry(1) != nullptr && agent.entry(2) == nullptr && agent.entry(3) == nullptr);
    EXPECT_TRUE(agent.entry(101) == nullptr && agent.entry(102) != nullptr &&
                agent.entry(full + 1) != nullptr);
    for (int pid = full + 2; pid <= full + 101; ++pid)
        receive(50, pid, "running");
    EXPECT_TRUE(agent.entry(1) == nullptr && agent.entry(199) == nullptr) << "few are over: the oldest ones";
}

TEST_F(EncodingHistory, ShowsTheLatestStateOfEachEncoding)
{
    EXPECT_FALSE(mayBeCleared());
    receive(50, 4711, "Film_Mix_Prt");
    receive(0, 4712, "Other");
    EXPECT_THAT(agent.items(history), ElementsAre("Clear History 0", "- 0", "Film_Mix 4711", "Other 4712"));
    EXPECT_EQ(view(4711), (EntryView{"Film_Mix", "50%"}));
    EXPECT_TRUE(mayBeAborted(4711) && mayBeCleared());
    const auto ids = agent.ids(history);

    receive(-1, 4711, "Film_Mix_Prt");
    EXPECT_EQ(view(4711), (EntryView{"Film_Mix - Failed", ""}));
    EXPECT_TRUE(mayBeAborted(4711)) << "it may still run";
    receive(100, 4711, "Longer_Name");
    EXPECT_EQ(view(4711), (EntryView{"Longer_Name", "100%"}));
    EXPECT_EQ(agent.entry(4711)->title(), "Film_Mix") << "the first title stays";
    EXPECT_FALSE(mayBeAborted(4711) || abort(4711));
    EXPECT_TRUE(mayBeAborted(4712)) << "each has a submenu of its own";
    EXPECT_EQ(agent.ids(history), ids);
    EXPECT_TRUE(agent.choose(history + "/Clear History"));
    EXPECT_THAT(agent.items(history), ElementsAre("Clear History 0", "- 0"));
    EXPECT_FALSE(mayBeCleared());
    EXPECT_THAT(asked, ElementsAre());
}

TEST_F(EncodingHistory, AbortKillsTheEncoderThenRemovesItsFolderAndTheEntry)
{
    ASSERT_TRUE(agent.report(4711, "/Volumes/Out put/Film/Film.wav"));
    ASSERT_TRUE(agent.report(4712, "/Other.wav"));
    EXPECT_TRUE(show(4711) && abort(4711) && show(4712));
    EXPECT_THAT(asked, ElementsAre("select /Volumes/Out put/Film", "shell kill -9 4711",
                                   "shell rm -Rf '/Volumes/Out put/Film'", "select /"));
    EXPECT_THAT(agent.items(history), ElementsAre("Clear History 0", "- 0", "Other 4712"));
    EXPECT_TRUE(agent.report(4711, "", 51)) << "one that still manages to report is back";
    EXPECT_TRUE(mayBeCleared() && abort(4712) && abort(4711));
    EXPECT_FALSE(mayBeCleared());
}

TEST_F(EncodingHistory, RefusesDeadlyProcessesAndFoldersAndUnknownOnes)
{
    receive(50, 4709, "unknown to the backend");
    ASSERT_TRUE(agent.report(4710, "")); // no path yet
    ASSERT_TRUE(agent.report(1, "/Film.wav"));
    ASSERT_TRUE(agent.report(getpid(), "/Out/it's/Film.wav"));
    EXPECT_TRUE(show(4709) && show(4710));
    for (const int pid : {4709, 4710, 1, getpid()}) {
        EXPECT_TRUE(abort(pid));
        EXPECT_EQ(agent.entry(pid), nullptr);
    }
    EXPECT_THAT(asked, ElementsAre("shell kill -9 4710"));
    for (const int deadly : {0, 1, -1, -4711, INT_MIN, getpid()})
        EXPECT_EQ(killCommand(deadly), "") << deadly;
}

TEST(OutputFolder, IsRemovedUnlessThatCouldTakeMoreThanTheOutput)
{
    const Kest::Test::TemporaryFolder root;
    const std::string r = root.path();
    std::filesystem::create_directories(r + "/users/me/out");
    std::filesystem::create_directory_symlink(r + "/users/me", r + "/link");
    std::filesystem::create_directory_symlink(r + "/users", r + "/above");
    const std::vector<std::string> homes{"", r + "/link", r + "/users/other"};

    for (const char* folder : {"/users/me/out", "/users/me/no such", "/users/mel", "/link/out/../new"}) {
        const auto verdict = folderToRemove(r + folder + "/Film.wav", homes);
        EXPECT_EQ(verdict.folder, r + folder) << verdict.refusal;
    }
    std::vector<std::string> refused = {"",
                                        "Film.wav",
                                        "out/Film.wav",
                                        "-/Film.wav",
                                        "~/Film.wav",
                                        "$HOME/Film.wav",
                                        "../../Film.wav",
                                        "/Film.wav",
                                        "//Film.wav",
                                        "/./Film.wav",
                                        "/../Film.wav",
                                        "/tmp/../Film.wav",
                                        "/'/Film.wav",
                                        "/Out/'; kill -9 -1; '/Film.wav",
                                        "/" + std::string(300, 'x') + "/Film.wav"};
    for (const char* folder :
         {"/users/me", "/users/me/", "/users/me/.", "/users/me/out/..", "/users/me/none/..", "/users",
          "/users/other", "/link", "/link/", "/link/..", "/above", "/above/me", "/users/me/it's", ""})
        refused.push_back(r + folder + "/Film.wav");
    for (const auto& path : refused) {
        const auto verdict = folderToRemove(path, homes);
        EXPECT_TRUE(verdict.folder.empty() && !verdict.refusal.empty()) << path;
    }
}

} // namespace
