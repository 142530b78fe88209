// The support engineer's tool beside the real agent and host, well and broken, in a world of its own.
#include "tests/system/World.h"

#include <csignal>
#include <filesystem>
#include <memory>
#include <string>

namespace Kest::Test {
namespace {

namespace fs = std::filesystem;

class InspectSystem : public SimulatedStudio {
protected:
    void SetUp() override
    {
        World::SetUp();
        startHostWithBus();
        startAgent();
    }
    void startHostWithBus()
    {
        startHost();
        tellHost("bus add bus-1 \"Dial\\x07og\"", "added");
    }
    /// Runs the tool, which is to print these in this order, and to end so.
    static void inspect(const std::string& command, int exitStatus, const std::vector<std::string>& lines)
    {
        Process tool({program("kest-inspect"), command});
        for (const auto& line : lines)
            EXPECT_TRUE(tool.prints(line)) << command;
        EXPECT_EQ(tool.exitStatus(), exitStatus) << command;
    }
    std::string number(const Process& process) const { return "process " + std::to_string(process.pid()); }
};

TEST_F(InspectSystem, FindsAllWellAndDisturbsNobody)
{
    choose("Monitoring Facility > Studio_A");
    ASSERT_TRUE(host->prints("Facility Studio_A"));
    inspect("doctor", 0,
            {"ok     host             " + number(*host) + ", 64 bit",
             "ok     agent            " + number(*agent),
             "read by " + number(*agent) + " (kest-settings-terminal)", "ok     settings file", " 0 wrong"});
    inspect("session", 0, {"KBUS  bus-1                Dial\\x07og", "PhysMonConfig", "Studio_A"});

    Process encoder(
        {program("encoder-simulator"), "--output", "/tmp/out/Good/Good_Film.wav", "--seconds", "1"});
    EXPECT_TRUE(agent->prints("Good_Film: 100%")) << "its pipe was disturbed";
    tellHost("end", "host stopped");
    EXPECT_FALSE(host->hasPrinted("FOREIGN WRITE"));
}

TEST_F(InspectSystem, WatchesUntilItIsTold)
{
    Process watch({program("kest-inspect"), "watch", "--interval", "20"});
    ASSERT_TRUE(watch.prints("client KBUS bus-1 \"Dial\\x07og\" came"));
    host->say("message -2");
    ASSERT_TRUE(watch.prints("message -2 (Press play to relink)"));
    choose("Speaker Configuration > Stereo");
    ASSERT_TRUE(watch.prints("PhysMonConfig: 1 (Stereo)"));
    host->say("bus rename bus-1 Speech");
    ASSERT_TRUE(watch.prints("\"Speech\" renamed"));
    host->say("start");
    ASSERT_TRUE(watch.prints("host down"));
    ASSERT_TRUE(watch.prints("host up"));
    watch.signal(SIGINT);
    EXPECT_EQ(watch.exitStatus(), 0);
    EXPECT_EQ(Process({program("kest-inspect"), "watch", "--json", "--for", "1"}).exitStatus(), 0);
    EXPECT_EQ(Process({program("kest-inspect"), "session", "--for", "1"}).exitStatus(), 2);
}

TEST_F(InspectSystem, FindsWhatIsBroken)
{
    fs::rename("/tmp/LIPC_LIPC_SESSION", "/tmp/kept");
    fs::rename("/tmp/LIPC_LIPC_VERSION", "/tmp/kept_too");
    inspect("session", 1, {"session: none"});
    inspect("doctor", 1, {"wrong  host             " + number(*host) + " keeps a session that nobody finds"});
    fs::rename("/tmp/kept", "/tmp/LIPC_LIPC_SESSION");
    fs::rename("/tmp/kept_too", "/tmp/LIPC_LIPC_VERSION");
    host->say("kill");
    EXPECT_EQ(host->exitStatus(), 128 + SIGKILL);

    {
        Process other({"/bin/sh", "-c", "exec 3<" + std::string(kFifo) + "; echo ready; read line"});
        ASSERT_TRUE(other.prints("ready"));
        inspect("doctor", 1, {"wrong  encoders' pipe   " + std::string(kFifo) + " is read by"});
    }
    fs::remove(kFifo);
    fs::create_directories(fs::path(kFifo) / "full"); // the agent cannot take it away
    fs::create_directories(home() / "Library/Application Support/Kestronics");
    writeFile(home() / "Library/Application Support/Kestronics/Kest-Settings.xml", "<PROPERTIES><VALUE");
    inspect("doctor", 1,
            {"wrong  host             " + number(*host) + " has ended", "wrong  encoders' pipe   ",
             "wrong  settings file", " 3 wrong"});
    agent->signal(SIGKILL);
    agent->exitStatus();
    fs::remove_all(kFifo);
    startHostWithBus();
    tellHost("end", "host stopped");
    fs::remove_all(home() / "Library");
    inspect("doctor", 0, {"note   host             none runs", "note   agent", " 0 wrong"});
}

/// Without root's right to write everything everywhere.
std::string doctorOfAUser()
{
    return "setpriv --bounding-set=-all --inh-caps=-all " + program("kest-inspect") + " doctor";
}

TEST_F(InspectSystem, FindsWhereNothingCanBeSaved)
{
    agent->say("quit");
    EXPECT_EQ(agent->exitStatus(), 0);
    const std::string folder = "Library/Application Support/Kestronics";
    const struct {
        std::string setting; // a command, in an empty home folder
        std::string found;
    } cases[] = {
        {"true", "ok     settings file    none yet, the defaults hold"},
        {"mount -t tmpfs -o ro none .", "wrong  settings file    /tmp/home is on a read-only file system"},
        {"mkdir -p '" + folder + "'; chmod 555 '" + folder + "'",
         "wrong  settings file    /tmp/home/" + folder + " is not writable"},
        {"mkdir Library; chmod 555 Library", "wrong  settings file    /tmp/home/Library is not writable"},
        {"touch Library", "wrong  settings file    /tmp/home/Library is a file, not a folder"},
        {"ln -s nothing Library", "wrong  settings file    /tmp/home/Library is a link, not a folder"},
        {"mkdir Library; chmod 700 Library; chown nobody Library || exit 77",
         "wrong  settings file    /tmp/home/Library belongs to nobody"},
        {"chmod 755 .; chown nobody . || exit 77", "wrong  settings file    /tmp/home belongs to nobody"},
    };
    for (const auto& one : cases) {
        Process shell({"/bin/sh", "-c",
                       "rm -rf /tmp/home && mkdir /tmp/home && cd /tmp/home && (" + one.setting +
                           ") && cd /tmp && " + doctorOfAUser() +
                           " | grep 'settings file'; status=$?; umount /tmp/home 2>/dev/null; exit $status"});
        const int status = shell.exitStatus();
        if (status == 77)
            continue; // in a user namespace no file can be given away
        EXPECT_TRUE(shell.prints(one.found)) << one.setting;
        EXPECT_EQ(one.found.starts_with("ok"), !shell.hasPrinted(" -> ")) << "what to do";
    }
}

TEST_F(InspectSystem, NamesTheCommandThatEndsEitherProgram)
{
    agent->say("quit");
    EXPECT_EQ(agent->exitStatus(), 0);
    for (const std::string name : {"kest-settings-terminal", "kest-settings"}) {
        if (!fs::exists(program(name)))
            continue; // no tray on this system
        agent = std::make_unique<Process>(
            std::vector<std::string>{"/usr/bin/env", "dbus-run-session", "--", program(name)});
        ASSERT_TRUE(agent->prints("fifo fd = "));
        Process shell({"/bin/sh", "-c",
                       "$(" + program("kest-inspect") + " doctor | sed -n 's/.*(" + name +
                           ").*: \\(kill [0-9]*\\)$/\\1/p')"});
        EXPECT_EQ(shell.exitStatus(), 0) << name;
        EXPECT_EQ(agent->exitStatus(), 0) << name;
    }
}

TEST_F(InspectSystem, NamesASecondAgentWhicheverOfBothHasThePipe)
{
    agent->signal(
        SIGSTOP); // only one of both runs at a time: each makes the pipe again that the other has replaced
    Process second({"/usr/bin/env", "HOME=/tmp/home2", program("kest-settings-terminal")});
    ASSERT_TRUE(second.prints("fifo fd = "));
    inspect("doctor", 1, {"belongs to " + number(second) + " (kest-settings-terminal), not to this agent"});
    second.signal(SIGSTOP);
    agent->signal(SIGCONT);
    ASSERT_TRUE(agent->prints("was gone and is made again"));
    inspect("doctor", 1, {number(second) + " (kest-settings-terminal) reads an earlier pipe of"});
    second.signal(SIGKILL);
    second.exitStatus();
}

} // namespace
} // namespace Kest::Test
