// kest-settings-ctl with the real agents: each of its commands, and what it says when there is none.
#include "tests/system/World.h"

#include <csignal>
#include <filesystem>
#include <sys/stat.h>

namespace Kest::Test {
namespace {

namespace fs = std::filesystem;

struct Result {
    int status;
    std::string output;
    std::string errors;
    bool operator==(const Result&) const = default;
};

void PrintTo(const Result& result, std::ostream* out)
{
    *out << result.status << "\n" << result.output << "\n" << result.errors;
}

/// Runs kest-settings-ctl with arguments as a shell reads them.
Result ctl(const std::string& arguments)
{
    Process shell(
        {"/bin/sh", "-c",
         program("kest-settings-ctl") + " " + arguments + " >/tmp/output 2>/tmp/errors </dev/null"});
    const int status = shell.exitStatus();
    return {status, readFile("/tmp/output"), readFile("/tmp/errors")};
}

/// With each agent that runs here.
class Control : public World, public testing::WithParamInterface<std::string> {
protected:
    void SetUp() override
    {
        World::SetUp();
        if (!fs::exists(program(GetParam())))
            GTEST_SKIP() << "not built here";
    }
    void startAgent()
    {
        setenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/tmp/control-bus", 1);
        if (GetParam() == "kest-settings" && !bus) {
            fs::remove("/tmp/control-bus");
            bus = std::make_unique<Process>(std::vector<std::string>{
                "/bin/sh", "-c", "exec dbus-daemon --session --nofork --address=unix:path=/tmp/control-bus"});
            ASSERT_TRUE(eventually([] { return fs::exists("/tmp/control-bus"); }));
        }
        agent = std::make_unique<Process>(std::vector<std::string>{program(GetParam())});
        ASSERT_TRUE(eventually([] { return ctl("menu").status == 0; }));
    }
    /// As an encoder; returns when the menu has it.
    static void report(const std::string& lines, const std::string& path)
    {
        ASSERT_TRUE(eventually(isPipeRead));
        writeFile(kFifo, lines);
        ASSERT_TRUE(eventually([&] { return ctl("get '" + path + "'").status == 0; }));
    }

    std::unique_ptr<Process> bus;
    std::unique_ptr<Process> agent;
};

TEST_P(Control, EachCommandDoesWhatItSays)
{
    Process host({program("k3dhost-simulator"), "--scenario", "-"});
    host.say("start");
    ASSERT_TRUE(host.prints("host started"));
    startAgent();

    EXPECT_NE(ctl("menu").output.find("Solo Mode\n  (x) Latch\n  ( ) Exclusive (XOR)\n"), std::string::npos);
    EXPECT_TRUE(ctl("menu --json").output.starts_with(R"({"ok":true,"items":[{)"));
    EXPECT_NE(ctl("menu --paths").output.find("\nMonitoring Facility > Studio_A\n"), std::string::npos);
    EXPECT_EQ(ctl("get 'Solo Mode > Latch'"), (Result{0, "(x) Solo Mode > Latch\n", ""}));

    Process watcher({program("kest-settings-ctl"), "watch"});
    Process jsonWatcher({program("kest-settings-ctl"), "watch", "--json"});
    ASSERT_TRUE(eventually([&] { // until both watch
        ctl("choose 'Solo Mode > Latch'");
        ctl("choose 'Solo Mode > Exclusive (XOR)'");
        return watcher.hasPrinted("changed Solo Mode > Latch: off") && jsonWatcher.hasPrinted("Exclusive");
    }));

    EXPECT_EQ(ctl("choose 'speaker configuration > STEREO'"),
              (Result{0, "(x) Speaker Configuration > Stereo\n", ""}));
    EXPECT_TRUE(hasSetting("PhysMonConfig", "1")) << "the reply came first";
    EXPECT_TRUE(host.prints("PhysMonConfig"));
    EXPECT_TRUE(watcher.prints("changed Speaker Configuration > Stereo: on"));
    EXPECT_TRUE(jsonWatcher.prints(R"("path":"Speaker Configuration > Stereo","what":"on")"));

    EXPECT_EQ(ctl("choose 'Speaker Configuration > Sterio'").errors,
              "kest-settings-ctl: no item \"Sterio\" in Speaker Configuration; the nearest is "
              "\"Speaker Configuration > Stereo\"\n");
    EXPECT_EQ(ctl("choose 'Encoding History > Clear History'"),
              (Result{1, "", "kest-settings-ctl: \"Encoding History > Clear History\" is greyed\n"}));

    EXPECT_EQ(ctl("choose 'Quit Kest Settings'"), (Result{0, "Quit Kest Settings\n", ""}));
    EXPECT_EQ(agent->exitStatus(), 0);
    EXPECT_EQ(watcher.exitStatus(), 1);
    EXPECT_TRUE(watcher.hasPrinted("the agent has closed the connection"));
    EXPECT_EQ(ctl("menu"), (Result{1, "", "kest-settings-ctl: no agent of this user is running\n"}));
}

TEST_P(Control, AnAbortNeedsAYesAndHasEndedWhenItIsAnswered)
{
    startAgent();
    Process encoder({"/bin/sleep", "1000"});
    fs::create_directories("/tmp/home/work/Feature");
    writeFile("/tmp/home/work/Feature/Feature.wav", "audio");
    const auto pid = std::to_string(encoder.pid());
    report("pid: " + pid + " , path: /tmp/home/work/Feature/Feature.wav\npid: " + pid + " , P: 5\n",
           "Encoding History > Feature");
    const std::string path = "Encoding History > Feature > Abort and Delete Output Folder";
    const auto refused = ctl("choose '" + path + "'");
    EXPECT_EQ(refused.status, 1);
    EXPECT_NE(refused.errors.find("confirm with --yes"), std::string::npos) << refused.errors;
    EXPECT_TRUE(fs::exists("/tmp/home/work/Feature/Feature.wav"));
    EXPECT_EQ(ctl("choose '" + path + "' --yes"), (Result{0, "done: " + path + "\n", ""}));
    EXPECT_FALSE(fs::exists("/tmp/home/work/Feature"));
    EXPECT_EQ(encoder.exitStatus(), 128 + SIGKILL);
}

TEST_P(Control, ASocketThatAKilledAgentLeftIsReplaced)
{
    startAgent();
    agent->signal(SIGKILL);
    EXPECT_EQ(agent->exitStatus(), 128 + SIGKILL);
    EXPECT_TRUE(fs::is_socket(home() / "Library/Application Support/Kestronics/Control/socket"));
    EXPECT_EQ(ctl("menu").errors, "kest-settings-ctl: no agent of this user is running\n");
    startAgent();
}

TEST_P(Control, TheRuntimeFolderIsPreferredWhereItBelongsToTheUser)
{
    fs::remove_all("/tmp/runtime");
    fs::create_directory("/tmp/runtime");
    setenv("XDG_RUNTIME_DIR", "/tmp/runtime", 1);
    startAgent();
    EXPECT_TRUE(fs::is_socket("/tmp/runtime/kest-settings/socket"));
    agent->signal(SIGTERM);
    EXPECT_EQ(agent->exitStatus(), 0);
    EXPECT_FALSE(fs::exists("/tmp/runtime/kest-settings"));
    chmod("/tmp/runtime", 0777);
    startAgent();
    EXPECT_TRUE(fs::is_socket(home() / "Library/Application Support/Kestronics/Control/socket"));
    EXPECT_FALSE(fs::exists("/tmp/runtime/kest-settings"));
    unsetenv("XDG_RUNTIME_DIR");
}

INSTANTIATE_TEST_SUITE_P(Agents, Control,
                         testing::Values("kest-settings", "kest-settings-terminal", "kest-settings-appkit"),
                         [](const auto& agent) {
                             std::string name = agent.param;
                             std::erase(name, '-');
                             return name;
                         });

// ssh and hotkeys meet an agent of any front end: the refusal names the command.
TEST_F(World, ASecondAgentNamesTheCommand)
{
    Process first({program("kest-settings-terminal")});
    ASSERT_TRUE(first.prints("Quit Kest Settings"));
    Process second({program("kest-settings-terminal")});
    EXPECT_TRUE(second.prints("is already running"));
    EXPECT_TRUE(second.hasPrinted("kest-settings-ctl"));
    EXPECT_EQ(second.exitStatus(), 1);
}

} // namespace
} // namespace Kest::Test
