// Encodings as they are reported through the real pipe, and the pipe's place in the file system.
#include "tests/backend/BackendFixture.h"
#include "tests/support/Process.h"

#include <sys/resource.h>

namespace {

namespace fs = std::filesystem;
using namespace Kest::Test;
using Kest::Settings::identifyProcess;
using testing::ElementsAre;

using EncodingProgress = BackendTest;

std::string progress(int pid, int percentage)
{
    return "pid: " + std::to_string(pid) + " , P: " + std::to_string(percentage);
}

TEST_F(EncodingProgress, IsToldWithTheNameOfThePathThatCameBefore)
{
    start();
    const Encoder encoder(fifo);
    encoder.write("pid: 4711 , P: 37\npid: 4711 , ERROR: \npid: 4711 , path: /Out/Film.d/Film.v2.wav\n");
    encoder.write("pid: 4711 , enc_type: Main\npid: 4711 , path:\npid: 4711 , P: -4\npid: 4711 , P: 38\n");
    encoder.write("pid: 4711 , path: Film\npid: 4711 , P: 39\npid: 9 , path: /x.y/A\npid: 9 , P: 0\n");
    EXPECT_THAT(heard(7), ElementsAre("37 4711 null", "-1 4711 null", "-1 4711 'Film.v2'",
                                      "-1 4711 'Film.v2'", "38 4711 'Film.v2'", "39 4711 'Film'", "0 9 'A'"));

    const auto known = backend->getEncodingStatus(4711);
    EXPECT_EQ(known.encType + " " + known.path + " " + known.name, "Main Film Film");
    EXPECT_EQ(known.errorCount, -3);
    EXPECT_EQ(backend->getEncodingStatus(4712).pid, 0) << "unknown";
}

TEST_F(EncodingProgress, MayBeQueriedWithinTheCallback)
{
    static std::vector<int> errors;
    errors.clear();
    place.startHost().putBus(10, "bus-1", "Dialog");
    start(std::chrono::hours(1));
    backend->messageContext = backend.get();
    backend->messageCallback = [](void* context, int, int pid, const char*) {
        std::vector<std::string> names;
        static_cast<Kest::Settings::Backend*>(context)->getKestBusNamesList(names);
        errors.push_back(static_cast<Kest::Settings::Backend*>(context)->getEncodingStatus(pid).errorCount);
    };
    Encoder(fifo).write("pid: 4711 , ERROR:\n" + progress(4711, 1) + "\npid: 4711 , ERROR:\n");
    EXPECT_TRUE(eventually([this] { return backend->getEncodingStatus(4711).errorCount == -2; }));
    EXPECT_TRUE(backend->getEncodingStatus(4711).hasFailed);
    backend.reset();
    EXPECT_THAT(errors, testing::IsSupersetOf({-1, -1, -2})) << "each finds its own line in the record";
}

TEST_F(EncodingProgress, IsReadFromLinesCutAnywhereAndOfAnyLineEnd)
{
    start();
    const Encoder encoder(fifo);
    std::size_t count = 0;
    for (const auto& lineEnd :
         {std::string("\n"), std::string("\r\n"), std::string("\r"), std::string(1, '\0')}) {
        const auto line = progress(4711, 37) + lineEnd;
        for (std::size_t cut = 0; cut <= line.size(); ++cut) {
            encoder.write(line.substr(0, cut));
            encoder.drain();
            encoder.write(line.substr(cut));
            ASSERT_EQ(heard(++count).size(), count) << cut;
        }
    }
    EXPECT_THAT(heard(), testing::Each("37 4711 null"));
    EXPECT_EQ(backend->getEncodingStatus(4711).errorCount, 0);
}

TEST_F(EncodingProgress, DropsOrRefusesWhatIsTooLongWhole)
{
    start();
    const Encoder encoder(fifo);
    const auto padded = [](int pid, std::size_t bytes) {
        auto line = progress(pid, pid);
        line.resize(bytes, ' ');
        return line;
    };
    Kest::Test::captureErrors();
    // Neither the first 4096 bytes of a line nor what is behind them are a line.
    encoder.write(padded(1, 4096) + '\n' + padded(2, 4097) + '\n' + padded(3, 40000) + '\n' + progress(4, 4) +
                  '\n' + padded(5, 4096) + progress(6, 6) + '\n' + progress(7, 7) + '\n');
    EXPECT_THAT(heard(3), ElementsAre("1 1 null", "4 4 null", "7 7 null"));
    EXPECT_EQ(std::ranges::count(Kest::Test::capturedErrors(), '\n'), 1) << "a flood of them is one line";

    Kest::Test::captureErrors();
    const auto longest = "/x/" + std::string(1020, 'p');
    const std::string refused[] = {longest + "p", std::string(5000, '/')};
    for (const auto& path : refused) {
        encoder.write("pid: 8 , path: " + longest + "\npid: 8 , enc_type: " + refused[0] + "\n" +
                      progress(8, 5) + "\n");
        encoder.write("pid: 8 , path: " + path + "\n" + progress(8, 6) + "\n");
    }
    const auto named = "5 8 '" + longest.substr(3) + "'";
    EXPECT_THAT(heard(7),
                testing::IsSupersetOf({named, std::string("6 8 null"), named, std::string("6 8 null")}))
        << "a refused path leaves none";
    EXPECT_EQ(backend->getEncodingStatus(8).path + backend->getEncodingStatus(8).name, "");
    EXPECT_EQ(std::ranges::count(Kest::Test::capturedErrors(), '\n'), 1) << "once a minute";
}

TEST_F(EncodingProgress, BelongsToTheProcessThatHasTheNumber)
{
    start();
    const Encoder encoder(fifo);
    Process other({"/bin/sleep", "100"});
    const auto process = identifyProcess(other.pid());
    for (const int pid : {getpid(), other.pid()})
        encoder.write(progress(pid, 5) + "\n");
    heard(2);
    const auto self = backend->getEncodingStatus(getpid());
    EXPECT_TRUE(self.process == identifyProcess(getpid()) && self.wroteToPipe);
    EXPECT_TRUE(backend->getEncodingStatus(process).pid == other.pid() &&
                !backend->getEncodingStatus(other.pid()).wroteToPipe)
        << "which has not got the pipe open";

    other.signal(SIGKILL);
    other.exitStatus();
    const auto error = "pid: " + std::to_string(other.pid()) + " , ERROR:\n";
    encoder.write(progress(other.pid(), 100) + "\n" + error);
    heard(4);
    std::this_thread::sleep_for(std::chrono::milliseconds(2)); // a number is identified once a millisecond
    encoder.write(progress(other.pid(), 50) + "\n" + error + progress(1, 1) + "\n");
    heard(5);
    const auto last = backend->getEncodingStatus(process);
    EXPECT_TRUE(last.percentage == 100 && last.errorCount == -1)
        << "its last lines are its own, later ones are not";
}

TEST_F(EncodingProgress, HasItsPipeWhateverIsInThePipesPlace)
{
    writeFile(place.folder / "target", "kept");
    const std::function<void()> others[] = {
        [] {},
        [this] { writeFile(fifo, "another's"); },
        [this] { fs::create_symlink(place.folder / "target", fifo); },
        [this] { mkfifo(fifo.c_str(), 0600); },
    };
    const auto umaskBefore = umask(077);
    for (const auto& putOther : others) {
        putOther(); // left over from before
        start();
        forget();
        {
            const Encoder early(fifo);
            early.write(progress(4, 4) + '\n');
            heard(1);
            fs::remove(fifo);
            putOther(); // and put there meanwhile
            EXPECT_TRUE(eventually([this] { return (statusOf(fifo).st_mode & 0777) == 0666; }))
                << "encoders of other users report too";
            Encoder(fifo).write(progress(1, 5) + '\n');
            heard(2);
            early.write(progress(2, 6) + '\n');
            EXPECT_THAT(heard(3), ElementsAre("4 4 null", "5 1 null", "6 2 null"))
                << "one that began before is heard too";
        }
        backend.reset();
        EXPECT_FALSE(fs::exists(fs::symlink_status(fifo))) << "its own pipe goes with it";
    }
    umask(umaskBefore);
    EXPECT_EQ(readFile(place.folder / "target"), "kept");

    start(std::chrono::hours(1));
    forget();
    Encoder(fifo).write(progress(1, 5) + '\n');
    heard(1);
    fs::remove(fifo);
    writeFile(fifo, "another's");
    backend.reset();
    EXPECT_EQ(readFile(fifo), "another's") << "nothing but its own pipe goes with it";
}

TEST_F(EncodingProgress, MakesItsPipeOnceAtTheStart)
{
    Kest::Test::captureErrors();
    for (int i = 0; i < 100; ++i) {
        start(std::chrono::microseconds(1)); // the monitor's first passes coincide with it
        const Encoder waited(fifo);
    }
    backend.reset();
    EXPECT_EQ(Kest::Test::capturedErrors(), "");
}

TEST_F(EncodingProgress, ReadsEarlierPipesUpToALimitAndLogsWhenItIsReached)
{
    constexpr std::size_t kEarlier = 64;
    Kest::Test::captureErrors();
    start();
    std::vector<std::unique_ptr<Encoder>> encoders;
    for (int pid = 1; pid <= 70; ++pid) {
        encoders.push_back(std::make_unique<Encoder>(fifo));
        encoders.back()->write(progress(pid, 0) + '\n');
        heard(static_cast<std::size_t>(pid));
        fs::remove(fifo);
    }
    const Encoder last(fifo);
    forget();
    for (const auto& encoder : encoders)
        encoder->write(progress(2, 1) + '\n');
    EXPECT_EQ(heard(kEarlier).size(), kEarlier);
    encoders.clear();
    last.write(progress(3, 2) + '\n');
    EXPECT_EQ(heard(kEarlier + 1).back(), "2 3 null");
    const std::string logged = Kest::Test::capturedErrors();
    const auto line = logged.find("more than 64 replaced pipes are open");
    EXPECT_NE(line, std::string::npos);
    EXPECT_EQ(logged.find("more than 64", line + 1), std::string::npos) << "once";
}

TEST_F(EncodingProgress, ReportsOnceWhatCannotBeReplacedAndReadsAndRetriesMeanwhile)
{
    // The pipe may be made again after its removal: then the folder cannot be moved to its path, and nothing
    // is lost.
    const auto occupy = [this] {
        fs::create_directories(place.folder / "folder/in it");
        EXPECT_TRUE(eventually([this] {
            std::error_code failure;
            fs::remove(fifo, failure);
            fs::rename(place.folder / "folder", fifo, failure);
            return !failure;
        }));
    };
    Kest::Test::captureErrors();
    occupy();
    start();
    EXPECT_TRUE(eventually([] { return std::ranges::count(Kest::Test::errorsSoFar(), '\n') == 2; }));
    for (int pass = 0; pass < 5; ++pass)
        awaitWholePass();
    fs::remove(fifo + "/in it"); // the empty folder is replaced
    const Encoder early(fifo);
    early.write(progress(1, 5) + '\n');
    EXPECT_THAT(heard(1), ElementsAre("5 1 null"));
    EXPECT_EQ(Kest::Test::capturedErrors(), "deleting existing file (or fifo): File exists\n"
                                            "can't create fifo: File exists\n");

    occupy();
    awaitWholePass();
    awaitWholePass();
    early.write(progress(1, 6) + '\n');
    EXPECT_EQ(heard(2).back(), "6 1 null") << "an encoder must not block while the path is occupied";
}

TEST(ProgressPipe, NamesItsPathOnceAndBeforeItIsOpen)
{
    const TemporaryFolder folder;
    const std::string path = folder / "fifo";
    Kest::Settings::ProgressPipe pipe(path.c_str());
    Kest::Test::captureOutput();
    rlimit descriptors{};
    getrlimit(RLIMIT_NOFILE, &descriptors);
    const rlimit none{0, descriptors.rlim_max};
    setrlimit(RLIMIT_NOFILE, &none);
    EXPECT_FALSE(pipe.make());
    setrlimit(RLIMIT_NOFILE, &descriptors);
    EXPECT_TRUE(pipe.make());
    pipe.remove();
    EXPECT_EQ(Kest::Test::capturedOutput(), "\nreading from : " + path + " \n");
}

TEST(PipeRivalry, ReplacesAnotherReadersPipeEverMoreSeldomAndAnythingElseAtOnce)
{
    using Kest::Settings::PipeRivalry;
    using std::chrono::seconds;
    PipeRivalry rivalry;
    PipeRivalry::Clock::time_point now{seconds(1000)};
    // How long a pipe of another reader stays; it is put in place `later` after ours.
    const auto stay = [&](seconds later) {
        rivalry.made(now);
        now += later;
        const auto lost = now;
        while (!rivalry.mayReplace(true, now))
            now += seconds(1);
        return std::chrono::duration_cast<seconds>(now - lost).count();
    };
    std::vector<long> stays;
    for (int loss = 0; loss < 8; ++loss)
        stays.push_back(stay(seconds(60)));
    EXPECT_THAT(stays, ElementsAre(0, 2, 4, 8, 16, 32, 60, 60));
    EXPECT_EQ(rivalry.losses(), 8);

    rivalry.made(now);
    EXPECT_TRUE(rivalry.mayReplace(false, now)) << "removed, or replaced by what nobody reads";
    EXPECT_EQ(rivalry.losses(), 0);
    EXPECT_EQ(stay(seconds(1)), 60);
    rivalry.made(now);
    EXPECT_FALSE(rivalry.mayReplace(true, now));
    EXPECT_TRUE(rivalry.mayReplace(false, now)) << "the other one has ended";
    EXPECT_EQ(stay(PipeRivalry::kSettled), 0) << "ours had stayed for long";
}

} // namespace
