// The table of encodings: what it keeps when it cannot keep all, and what has been reported since. The forms
// of a line are in fuzz/corpus/lines, where they are compared with sscanf.
#include "backend/EncodingTable.h"

#include <gmock/gmock.h>

namespace {

using namespace Kest::Settings;
using testing::ElementsAre;

class EncodingTableTest : public testing::Test {
protected:
    const encodingStatus* path(int pid, std::string_view text) { return table.take({pid, PathLine{text}}); }
    const encodingStatus* progress(int pid, int percentage)
    {
        return table.take({pid, ProgressLine{percentage}});
    }
    const encodingStatus* error(int pid) { return table.take({pid, ErrorLine{}}); }
    bool knows(int pid) const { return table.find(pid) != nullptr; }
    std::vector<int> reported()
    {
        std::vector<int> pids;
        for (const auto& status : table.reportedSince(since))
            pids.push_back(status.pid);
        return pids;
    }

    static constexpr std::size_t kMaxTexts = 20 * 1800;
    const std::string longPath = std::string(900, 'p'); // its name has the same length
    EncodingTable table{kMaxTexts};
    std::uint64_t since = 0;
};

TEST_F(EncodingTableTest, HasARecordForEachProcessThatHadTheNumber)
{
    const ProcessIdentity nobody{5, 0};
    const ProcessIdentity first{5, 100};
    const ProcessIdentity second{5, 200};
    table.identify(nobody);
    path(5, "/Out/Forged/Film.wav");
    table.identify(first);
    EXPECT_EQ(table.find(5)->path, "") << "of a number that no process had";
    path(5, "/Out/Film/Film.wav");
    table.setWroteToPipe(5);
    progress(5, 60);
    table.identify(nobody);
    progress(5, 61);
    EXPECT_EQ(table.find(first)->percentage, 61) << "its last line arrives when it has ended";

    table.identify(second);
    EXPECT_TRUE(table.find(5) == table.find(second) && table.find(5)->process == second);
    EXPECT_TRUE(table.find(5)->path.empty() && !table.find(5)->wroteToPipe && table.find(5)->percentage < 0);
    EXPECT_EQ(table.find(first)->path, "/Out/Film/Film.wav");
    progress(5, 100);
    EXPECT_EQ(table.find(first)->percentage, 61);
    EXPECT_NE(path(5, "/Out/Second/Film.wav"), nullptr) << "a second output of a running process";
    table.identify(nobody);
    EXPECT_TRUE(progress(5, 50) == nullptr && path(5, "/Out/X/X.wav") == nullptr && error(5) == nullptr)
        << "nothing is changed when it has finished and ended";
    EXPECT_EQ(table.size(), 3U);
}

TEST_F(EncodingTableTest, EvictsThoseThatAreOverFirstAndTheOldestOfThem)
{
    for (int pid = 1; pid <= 20; ++pid) {
        progress(pid, pid >= 19 ? 100 : 50);
        path(pid, longPath);
    }
    error(18);
    table.identify({1, 100}); // the number's next process: the record before is over
    progress(2, 51);
    EXPECT_EQ(table.evictions(), 0U);
    path(21, longPath); // to 18 paths or less: three records
    EXPECT_EQ(table.evictions(), 1U);
    EXPECT_FALSE(knows(19) || knows(20) || table.find(ProcessIdentity{1, 0}) != nullptr);
    EXPECT_TRUE(knows(18) && knows(3));
    for (int pid = 22; pid <= 24; ++pid)
        path(pid, longPath);
    EXPECT_FALSE(knows(18) || knows(3) || knows(4));
    EXPECT_TRUE(knows(2) && knows(5)) << "which has reported again";

    for (int pid = 100; pid < 1000; ++pid) {
        table.take({pid, TypeLine{longPath}});
        ASSERT_TRUE(knows(pid) && table.textBytes() <= kMaxTexts);
    }
    path(7, std::string(2 * kMaxTexts, 'p'));
    EXPECT_EQ(table.size(), 1u) << "one record is kept whatever its size";
    path(7, "");
    EXPECT_EQ(table.textBytes(), 0U);
}

TEST_F(EncodingTableTest, ReturnsEachThatReportedOnceAndInTheOrderOfTheirFirstReports)
{
    path(3, "/Out/Film.wav");
    progress(2, 10);
    progress(1, 10);
    error(2);
    EXPECT_THAT(reported(), ElementsAre(2, 1)) << "a path alone is no report";
    path(1, "/Out/Other.wav");
    EXPECT_THAT(reported(), ElementsAre());
    progress(2, 11);
    progress(3, 1);
    EXPECT_FALSE(table.find(2)->hasFailed);
    EXPECT_THAT(reported(), ElementsAre(2, 3));
}

} // namespace
