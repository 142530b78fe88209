// The forms of a line are in fuzz/corpus/lines, where they are compared with sscanf.
#include "backend/EncodingTable.h"
#include "tests/backend/BackendFixture.h"

namespace {

using namespace Kest::Settings;
using namespace Kest::Test;

std::string line(int pid, int percentage)
{
    return "pid: " + std::to_string(pid) + " , P: " + std::to_string(percentage) + "\n";
}

using EncodingProgress = BackendTest;

TEST_F(EncodingProgress, IsReportedWithTheNameOfTheLastPath)
{
    start();
    const Encoder encoder(fifo);
    encoder.write("pid: 4711 , P: 37\npid: 4711 , ERROR: \npid: 4711 , path: /Out/Film.d/Film.v2.wav\n"
                  "pid: 4711 , enc_type: Main\npid: 4711 , path:\npid: 4711 , P: -4\npid: 4711 , P: 38\n"
                  "pid: 4711 , path: Film\npid: 4711 , P: 39\npid: 9 , path: /x.y/A\npid: 9 , P: 0\n");
    EXPECT_THAT(received(7), ElementsAre("37 4711 null", "-1 4711 null (1)", "-1 4711 'Film.v2' (2)",
                                         "-1 4711 'Film.v2' (3)", "38 4711 'Film.v2' (3)",
                                         "39 4711 'Film' (3)", "0 9 'A'"));
    EXPECT_EQ(backend->getEncodingStatus(4711).encType, "Main");
    EXPECT_EQ(backend->getEncodingStatus(4712).pid, 0) << "unknown";
}

TEST_F(EncodingProgress, IsReadFromLinesCutAnywhereAndOfAnyLineEnd)
{
    start();
    const Encoder encoder(fifo);
    for (const auto& lineEnd : {"\n"s, "\r\n"s, "\r"s, "\0"s}) {
        const auto text = "pid: 4711 , P: 37" + lineEnd;
        for (std::size_t cut = 0; cut <= text.size(); ++cut) {
            encoder.write(text.substr(0, cut));
            encoder.drain();
            encoder.write(text.substr(cut));
            ASSERT_THAT(received(1), ElementsAre("37 4711 null")) << cut;
        }
    }
}

TEST_F(EncodingProgress, DropsLinesAndRefusesValuesThatAreTooLong)
{
    start();
    const Encoder encoder(fifo);
    const auto padded = [](int pid, std::size_t bytes) {
        auto text = "pid: " + std::to_string(pid) + " , P: 1";
        text.resize(bytes, ' ');
        return text;
    };
    captureErrors();
    // Neither the first 4096 bytes of a longer line nor the bytes behind them are a line.
    encoder.write(padded(1, 4096) + '\n' + padded(2, 4097) + '\n' + padded(3, 40000) + '\n' + line(4, 4) +
                  padded(5, 4096) + line(6, 6) + line(7, 7));
    EXPECT_THAT(received(3), ElementsAre("1 1 null", "4 4 null", "7 7 null"));
    for (const auto length : {1024u, 5000u}) {
        encoder.write("pid: 8 , path: /x/Film\npid: 8 , enc_type: " + std::string(1024, 'x') + "\n" +
                      line(8, 5) + "pid: 8 , path: " + std::string(length, '/') + "\n" + line(8, 6));
        EXPECT_THAT(received(2), ElementsAre("5 8 'Film'", "6 8 null"));
    }
    EXPECT_EQ(backend->getEncodingStatus(8).path + backend->getEncodingStatus(8).name, "");
    EXPECT_EQ(std::ranges::count(capturedErrors(), '\n'), 2) << "one of each kind a minute";
}

TEST_F(EncodingProgress, HasItsPipeWhateverIsAtItsPath)
{
    const auto target = system.folder / "target";
    writeFile(target, "kept");
    const std::function<void()> others[] = {
        [] {},
        [this] { writeFile(fifo, "another's"); },
        [&] { fs::create_symlink(target, fifo); },
        [this] { mkfifo(fifo.c_str(), 0600); },
    };
    const auto umaskBefore = umask(077);
    for (const auto& putOther : others) {
        putOther(); // left over from before
        start();
        {
            const Encoder early(fifo);
            early.write(line(4, 4));
            EXPECT_THAT(received(1), ElementsAre("4 4 null"));
            fs::remove(fifo);
            putOther();
            EXPECT_TRUE(eventually([this] { // encoders of other users report too
                return fs::symlink_status(fifo).permissions() == fs::perms(0666);
            }));
            Encoder(fifo).write(line(1, 5));
            EXPECT_THAT(received(1), ElementsAre("5 1 null"));
            early.write(line(2, 6));
            EXPECT_THAT(received(1), ElementsAre("6 2 null"));
        }
        backend.reset();
        EXPECT_FALSE(fs::exists(fs::symlink_status(fifo)));
    }
    umask(umaskBefore);
    EXPECT_EQ(readFile(target), "kept");

    start(1h);
    Encoder(fifo).write(line(1, 5));
    received(1);
    fs::remove(fifo);
    writeFile(fifo, "another's");
    backend.reset();
    EXPECT_EQ(readFile(fifo), "another's");
}

TEST_F(EncodingProgress, ReadsEarlierPipesUpToALimitAndLogsOnceWhenItIsReached)
{
    const auto isOnce = [](const std::string& text, const std::string& part) {
        return text.find(part) != std::string::npos && text.find(part) == text.rfind(part);
    };
    captureErrors();
    captureOutput();
    start();
    std::vector<std::unique_ptr<Encoder>> encoders;
    for (int pid = 1; pid <= 70; ++pid) {
        encoders.push_back(std::make_unique<Encoder>(fifo));
        encoders.back()->write(line(pid, 0));
        received(1);
        fs::remove(fifo);
    }
    const Encoder last(fifo);
    for (const auto& encoder : encoders)
        encoder->write(line(2, 1));
    EXPECT_EQ(received(64).size(), 64U);
    encoders.clear();
    last.write(line(3, 2));
    EXPECT_THAT(received(1), ElementsAre("2 3 null"));
    EXPECT_TRUE(isOnce(capturedOutput(), "reading from : " + fifo));
    EXPECT_TRUE(isOnce(capturedErrors(), "more than 64 replaced pipes are open"));
}

TEST_F(EncodingProgress, IsReadFromAnEarlierPipeWhileItsPathIsOccupied)
{
    // The pipe may be created again after its removal: then the folder cannot be moved there.
    const auto occupyPath = [this] {
        fs::create_directories(system.folder / "folder/in it");
        EXPECT_TRUE(eventually([this] {
            std::error_code failure;
            fs::remove(fifo, failure);
            fs::rename(system.folder / "folder", fifo, failure);
            return !failure;
        }));
    };
    captureErrors();
    occupyPath();
    start();
    EXPECT_TRUE(eventually([] { return std::ranges::count(errorsSoFar(), '\n') == 2; }));
    awaitPasses(5);
    fs::remove(fifo + "/in it"); // the empty folder is replaced
    const Encoder early(fifo);
    EXPECT_EQ(capturedErrors(), "deleting existing file (or fifo): File exists\n"
                                "can't create fifo: File exists\n")
        << "once";
    occupyPath();
    awaitPasses(2);
    early.write(line(1, 6));
    EXPECT_THAT(received(1), ElementsAre("6 1 null"));
}

TEST(PipeRivalry, DoublesItsDelaysForAnotherReadersPipeAndReplacesAnythingElseAtOnce)
{
    PipeRivalry rivalry;
    PipeRivalry::Clock::time_point now{1000s};
    // Returns how many seconds a pipe of another reader stays that replaces ours after `later`.
    const auto stay = [&](std::chrono::seconds later) {
        rivalry.pipeCreated(now);
        const auto lost = now += later;
        while (!rivalry.mayReplace(true, now))
            now += 1s;
        return (now - lost) / 1s;
    };
    for (const auto wanted : {0, 2, 4, 8, 16, 32, 60, 60})
        EXPECT_EQ(stay(60s), wanted);
    EXPECT_EQ(rivalry.losses(), 8);

    rivalry.pipeCreated(now);
    EXPECT_TRUE(rivalry.mayReplace(false, now)) << "removed, or replaced by what nobody reads";
    EXPECT_EQ(rivalry.losses(), 0);
    EXPECT_EQ(stay(1s), 60);
    rivalry.pipeCreated(now);
    EXPECT_FALSE(rivalry.mayReplace(true, now));
    EXPECT_TRUE(rivalry.mayReplace(false, now)) << "the other one has ended";
    EXPECT_EQ(stay(PipeRivalry::kStable), 0) << "ours had stayed for long";
}

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
    table.setWriter(nobody);
    path(5, "/Out/Forged/Film.wav");
    table.setWriter(first);
    EXPECT_EQ(table.find(5)->path, "") << "of a number that no process had";
    path(5, "/Out/Film/Film.wav");
    table.setHadPipeOpen(5);
    progress(5, 60);
    table.setWriter(nobody);
    progress(5, 61);
    EXPECT_EQ(table.find(first)->percentage, 61) << "its last line arrives when it has ended";

    table.setWriter(second);
    EXPECT_TRUE(table.find(5) == table.find(second) && table.find(5)->process == second);
    EXPECT_TRUE(table.find(5)->path.empty() && !table.find(5)->hadPipeOpen && table.find(5)->percentage < 0);
    EXPECT_EQ(table.find(first)->path, "/Out/Film/Film.wav");
    progress(5, 100);
    EXPECT_EQ(table.find(first)->percentage, 61);
    EXPECT_NE(path(5, "/Out/Second/Film.wav"), nullptr) << "a second output of a running process";
    table.setWriter(nobody);
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
    table.setWriter({1, 100}); // the number's next process: the record before is over
    progress(2, 51);
    EXPECT_EQ(table.evictionRuns(), 0U);
    path(21, longPath); // to 18 paths or less: three records
    EXPECT_EQ(table.evictionRuns(), 1U);
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
