// What the table of encodings keeps when it cannot keep all.
#include "backend/EncodingTable.h"

#include <gtest/gtest.h>

#include <climits>
#include <unistd.h>

namespace {

using Kest::Settings::EncodingTable;

const std::string kPath(900, 'p');

TEST(EncodingTable, KeepsEveryRecordOfARealRun)
{
    EncodingTable table;
    for (int pid = 1; pid <= 10000; ++pid) {
        table.setPath(pid, "/Volumes/Out/Reel_" + std::to_string(pid) + "/Reel_Mix_Print.wav");
        table.setType(pid, "Main");
        table.setPercentage(pid, 100);
    }
    EXPECT_EQ(table.size(), 10000u);
    EXPECT_EQ(table.find(1)->path, "/Volumes/Out/Reel_1/Reel_Mix_Print.wav");
}

TEST(EncodingTable, ForgetsTheOldestThatIsOverBeforeAnyThatRuns)
{
    const auto perRecord = [] {
        EncodingTable one;
        one.setPath(1, kPath);
        return one.bytes();
    }();
    EncodingTable table(4 * perRecord);
    const int gone = INT_MAX; // no process has this id
    for (const int pid : {getpid(), gone, 1, gone - 1})
        table.setPath(pid, kPath);
    table.setPercentage(1, 100);
    table.addError(gone - 1);
    table.setPercentage(1, 100); // heard of again
    const std::pair<int, int> steps[] = {{1000000001, gone - 1}, {1000000002, 1}, {1000000003, gone}};
    for (const auto& [added, forgotten] : steps) {
        table.setPath(added, kPath);
        EXPECT_EQ(table.find(forgotten), nullptr) << forgotten;
        EXPECT_EQ(table.size(), 4u);
    }
    table.setPercentage(1000000003, 100); // over, and the only one
    for (int pid = 1000000004; pid < 1000100000; ++pid) {
        table.setType(pid, kPath);
        ASSERT_NE(table.find(pid), nullptr);
        ASSERT_LE(table.bytes(), 4 * perRecord);
    }
    ASSERT_NE(table.find(getpid()), nullptr) << "which runs";
    EXPECT_EQ(table.find(getpid())->path, kPath);

    table.setPath(7, std::string(10 * perRecord, 'p'));
    EXPECT_EQ(table.size(), 1u) << "one record is kept whatever its size";
}

} // namespace
