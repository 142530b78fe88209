// What the table of encodings keeps when it cannot keep all.
#include "backend/EncodingTable.h"

#include <gtest/gtest.h>

#include <array>
#include <climits>
#include <unistd.h>

namespace {

using Kest::Settings::EncodingTable;
using Kest::Settings::identifyProcess;
using Kest::Settings::ProcessIdentity;

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

TEST(EncodingTable, HasARecordForEachProcessThatHadTheNumber)
{
    EncodingTable table;
    const ProcessIdentity nobody{5, 0};
    const ProcessIdentity first{5, 100};
    const ProcessIdentity second{5, 200};
    table.identify(nobody);
    table.setPath(5, "/Out/Forged/Film.wav");
    table.identify(first);
    EXPECT_EQ(table.find(5)->path, "") << "of a number that no process had";
    table.setPath(5, "/Out/Film/Film.wav");
    table.setWroteToPipe(5);
    table.setPercentage(5, 60);
    table.identify(nobody);
    table.setPercentage(5, 61);
    EXPECT_EQ(table.find(first)->percentage, 61) << "its last line arrives when it has ended";

    table.identify(second);
    EXPECT_TRUE(table.find(5) == table.find(second) && table.find(5)->process == second);
    EXPECT_TRUE(table.find(5)->path.empty() && !table.find(5)->wroteToPipe && !hasReported(*table.find(5)));
    EXPECT_EQ(table.find(first)->path, "/Out/Film/Film.wav");
    table.setPercentage(5, 100);
    EXPECT_EQ(table.find(first)->percentage, 61);
    EXPECT_NE(table.setPath(5, "/Out/Second/Film.wav"), nullptr) << "a second output of a running process";
    table.identify(nobody);
    EXPECT_TRUE(table.setPercentage(5, 50) == nullptr && table.setPath(5, "/Out/X/X.wav") == nullptr &&
                table.addError(5) == nullptr)
        << "nothing is changed when it has finished and ended";
    EXPECT_EQ(table.size(), 3U);
}

TEST(EncodingTable, ForgetsTheOldestThatAreOverBeforeAnyThatRun)
{
    const auto perRecord = [] {
        EncodingTable one;
        one.setPath(1, kPath);
        return one.bytes();
    }();
    EncodingTable table(20 * perRecord); // three go at once
    const int gone = INT_MAX;            // no process has this id
    for (int i = 0; i < 16; ++i)
        table.setPath(gone - i, kPath);
    table.identify(identifyProcess(getpid()));
    for (const int pid : {getpid(), 1, 2, 3})
        table.setPath(pid, kPath);
    for (const int pid : {1, 2, 3, 1}) // 1 is heard of again
        table.setPercentage(pid, 100);
    table.addError(gone - 9);
    table.setPath(gone - 1, kPath);
    const std::array<int, 4> forgotten[] = {
        {2, 3, 1, gone - 9}, {gone - 9, gone, gone - 2, gone - 3}, {gone - 3, gone - 4, gone - 5, gone - 1}};
    for (int added = 1000000001; const auto& [first, second, third, isKept] : forgotten) {
        for (const int pid : {first, second, third})
            EXPECT_NE(table.find(pid), nullptr) << pid;
        while (table.find(first) != nullptr)
            table.setPath(added++, kPath);
        for (const int pid : {second, third})
            EXPECT_EQ(table.find(pid), nullptr) << pid;
        EXPECT_NE(table.find(isKept), nullptr) << isKept;
    }
    for (int pid = 1000000100; pid < 1000100000; ++pid) {
        table.setType(pid, kPath);
        ASSERT_NE(table.find(pid), nullptr);
        ASSERT_LE(table.bytes(), 20 * perRecord);
    }
    ASSERT_NE(table.find(getpid()), nullptr) << "which runs";
    EXPECT_EQ(table.find(getpid())->path, kPath);

    for (std::uint64_t start = 1; start < 200; ++start) {
        table.identify({8, start});
        ASSERT_EQ(table.find(8)->process.startTime, start) << "the newest one";
        ASSERT_LE(table.bytes(), 20 * perRecord);
    }
    ASSERT_NE(table.find(getpid()), nullptr) << "which runs";

    table.setPath(7, std::string(50 * perRecord, 'p'));
    EXPECT_EQ(table.size(), 1u) << "one record is kept whatever its size";
}

} // namespace
