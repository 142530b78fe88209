// The agent full screen in a real terminal emulator (tmux), driven by keys and judged by what stands on it.
#include "tests/support/Eventually.h"
#include "tests/system/World.h"

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <iterator>
#include <sstream>
#include <string>

namespace Kest::Test {
namespace {

constexpr char kPrompt[] = "ready$";

/// A window of 80x24 with a shell in it.
class Terminal {
public:
    Terminal()
    {
        // Its shell finds the programs by their names: the path of a checkout may need quoting.
        setenv("PATH", (std::string(KEST_PROGRAMS) + ":" + searchPath).c_str(), 1);
        tmux("new-session -d -x 80 -y 24 env PS1='" + std::string(kPrompt) +
             " ' LC_ALL=C.UTF-8 bash --norc --noprofile");
        EXPECT_TRUE(shows(kPrompt));
        modes = shellModes();
    }
    ~Terminal()
    {
        const auto agent = children();
        tmux("kill-server");
        if (!agent.empty()) // after a test that has failed: the next one is to have the place for itself
            kill(std::stoi(agent), SIGKILL);
    }
    Terminal(const Terminal&) = delete;
    Terminal& operator=(const Terminal&) = delete;

    /// Each word is a key or a text, as tmux has them.
    void press(const std::string& keys) const { tmux("send-keys " + keys); }
    void command(const std::string& line) const { press("'" + line + "' Enter"); }
    void resize(int columns, int lines) const
    {
        tmux("resize-window -x " + std::to_string(columns) + " -y " + std::to_string(lines));
    }
    void click(char column, char line) const
    {
        char bytes[40];
        std::snprintf(bytes, sizeof bytes, "-H 1b 5b 4d 20 %02x %02x", column + 33, line + 33);
        press(bytes);
    }
    std::string screen(const std::string& how = "") const { return tmux("capture-pane -p " + how); }
    bool shows(const std::string& text) const
    {
        const bool found = eventually([&] { return screen().find(text) != std::string::npos; });
        if (!found)
            std::printf("no \"%s\" on the screen:\n%s", text.c_str(), screen().c_str());
        return found;
    }
    /// The pid of what the shell runs, or nothing.
    std::string children() const { return childrenOf(value("pane_pid")); }
    /// Waits until what the shell runs is stopped, with all that it has started.
    bool isStopped() const
    {
        const bool isSo = eventually([&] {
            const auto job = children().substr(0, children().find(' '));
            std::istringstream processes(job + " " + childrenOf(job));
            using Number = std::istream_iterator<std::string>;
            return std::all_of(Number(processes), Number(), [](const auto& process) {
                return readFile("/proc/" + process + "/stat").find(") T ") != std::string::npos;
            });
        });
        return isSo && value("alternate_on") == "0";
    }
    /// Waits for the shell: everything that a program may have changed is as it was.
    bool isInOrder() const
    {
        const bool isBack = eventually([&] { return children().empty() && value("alternate_on") == "0"; });
        const bool isSame = shellModes() == modes;
        if (!isBack || !isSame)
            std::printf("%s\n%s", shellModes().c_str(), screen().c_str());
        return isBack && isSame && value("cursor_flag") == "1" && value("mouse_any_flag") == "0" &&
               value("keypad_flag") == "0";
    }
    std::string value(const std::string& name) const
    {
        auto text = tmux("display-message -p '#{" + name + "}'");
        return text.substr(0, text.find('\n'));
    }

private:
    static std::string childrenOf(const std::string& process)
    {
        return readFile("/proc/" + process + "/task/" + process + "/children");
    }
    // What stty tells when the shell runs it, which sets its own modes for a program and takes them back.
    std::string shellModes() const
    {
        std::remove("/tmp/modes");
        command("stty -a >/tmp/draft && mv /tmp/draft /tmp/modes");
        EXPECT_TRUE(eventually([] { return !readFile("/tmp/modes").empty(); })) << screen();
        const auto told = readFile("/tmp/modes");
        return told.substr(
            std::min(told.find(';'), told.size())); // the speed; the size that follows is the window's
    }
    std::string tmux(const std::string& arguments) const
    {
        std::string text;
        FILE* output = popen(("tmux -f /dev/null -S " + socket + " " + arguments + " 2>&1").c_str(), "r");
        for (int byte = 0; (byte = std::fgetc(output)) != EOF;)
            text += static_cast<char>(byte);
        pclose(output);
        return text;
    }

    static inline const std::string searchPath = std::getenv("PATH");
    static inline int count = 0;
    const std::string socket = "/tmp/tmux-" + std::to_string(++count); // not that of a server that is ending
    std::string modes;
};

class FullScreen : public World {
protected:
    void startAgent(const std::string& environment = "")
    {
        terminal.command("clear; " + environment + " " + agent);
        ASSERT_TRUE(terminal.shows("Quit Kest Settings"));
    }
    void endAgent()
    {
        terminal.press("q");
        EXPECT_TRUE(terminal.isInOrder());
    }

    const std::string agent = "kest-settings-terminal";
    Terminal terminal;
};

TEST_F(FullScreen, ChoicesByKeysAndMouseReachTheFileAndTheHost)
{
    Process host({program("k3dhost-simulator"), "--scenario", "-"});
    host.say("start");
    ASSERT_TRUE(host.prints("host started"));
    startAgent();
    terminal.press("Enter");
    ASSERT_TRUE(terminal.shows("> (x) Latch"));
    terminal.press("Down Space");
    ASSERT_TRUE(host.prints("SoloMode 1"));
    EXPECT_TRUE(hasSetting("SoloMode", "1")) << settings();
    EXPECT_TRUE(terminal.shows("> (x) Exclusive (XOR)"));
    terminal.click(5, 1);
    ASSERT_TRUE(host.prints("SoloMode 0"));
    EXPECT_TRUE(terminal.shows("> (x) Latch"));

    terminal.press("/ dialog"); // before there is one
    ASSERT_TRUE(terminal.shows("no item holds this"));
    host.say("bus add bus-1 Dialog");
    ASSERT_TRUE(terminal.shows("> Default Bus > Dialog"));
    ASSERT_TRUE(terminal.shows("K3DHost: 2 buses, changed "));
    terminal.press("Enter");
    ASSERT_TRUE(terminal.shows("> ( ) Dialog"));
    EXPECT_TRUE(terminal.shows("\nbus 1 : Dialog\n")) << "what is printed has its line on the screen";
    terminal.press("Enter");
    EXPECT_TRUE(host.prints("(id bus-1)"));
    host.say("stop");
    EXPECT_TRUE(terminal.shows("no K3DHost, 2 buses"));
    endAgent();
}

TEST_F(FullScreen, LeavesTheTerminalInOrderHoweverItEnds)
{
    for (const int signal : {SIGTERM, SIGINT, SIGHUP, SIGSEGV, SIGABRT}) {
        startAgent();
        EXPECT_EQ(terminal.value("alternate_on"), "1");
        EXPECT_EQ(terminal.value("cursor_flag"), "0");
        kill(std::stoi(terminal.children()), signal);
        EXPECT_TRUE(terminal.isInOrder()) << signal;
    }
    startAgent();
    terminal.press("C-c");
    EXPECT_TRUE(terminal.isInOrder());
}

TEST_F(FullScreen, FollowsTheWindowAndComesBackAfterASuspension)
{
    startAgent();
    terminal.resize(50, 10);
    ASSERT_TRUE(terminal.shows(" 1-7 of "));
    terminal.resize(30, 6);
    ASSERT_TRUE(terminal.shows("Window too small: 40x8 needed"));
    terminal.resize(80, 24);
    ASSERT_TRUE(terminal.shows("Quit Kest Settings"));

    terminal.press("C-z");
    ASSERT_TRUE(terminal.shows("Stopped"));
    EXPECT_EQ(terminal.value("alternate_on"), "0");
    terminal.command("clear; fg");
    ASSERT_TRUE(terminal.shows("Quit Kest Settings"));
    EXPECT_EQ(terminal.value("alternate_on"), "1");
    terminal.press("/ 'default bus' Enter Enter");
    ASSERT_TRUE(terminal.shows("> (x) Main Bus"));

    terminal.press("C-z");
    ASSERT_TRUE(terminal.shows("Stopped"));
    terminal.command("clear; kill %1");
    EXPECT_TRUE(terminal.isInOrder());
}

// As ./run starts it. The script stops at once when the terminal asks it to, the agent only after it has left
// the screen; continued in between, it would stop a second time, and nobody would know.
TEST_F(FullScreen, IsSuspendedAndContinuedWithTheScriptThatStartedIt)
{
    writeFile("/tmp/start", "sleep 1000 &\n'" + agent + "'\nkill $!\n");
    terminal.command("clear; sh /tmp/start");
    ASSERT_TRUE(terminal.shows("> Solo Mode"));
    for (const std::string key : {"End", "Home", "End", "Home"}) {
        terminal.press("C-z");
        ASSERT_TRUE(terminal.shows("Stopped")) << "the shell has the terminal";
        EXPECT_TRUE(terminal.isStopped());
        terminal.command("clear; fg");
        terminal.press(key);
        ASSERT_TRUE(terminal.shows(key == "Home" ? "> Solo Mode" : "> Quit Kest Settings"));
    }
    terminal.press("C-z");
    ASSERT_TRUE(terminal.shows("Stopped"));
    terminal.command("clear; bg");
    EXPECT_TRUE(terminal.isStopped()) << "there is no screen in the background";
    terminal.command("clear; fg");
    ASSERT_TRUE(terminal.shows("> Solo Mode"));
    endAgent();
}

TEST_F(FullScreen, ProgressMovesWhileTheMenuIsOpen)
{
    startAgent();
    terminal.press("/ 'encoding history' Enter Enter");
    ASSERT_TRUE(terminal.shows("Kest Settings > Encoding History"));
    const Process encoder({program("encoder-simulator"), "--output", "/tmp/out/Film/Film_Mix_Atm.wav",
                           "--seconds", "2", "--steps", "4"});
    EXPECT_TRUE(terminal.shows("\u2588\u2591"));
    EXPECT_TRUE(terminal.shows("\u2588] 100%"));
    EXPECT_EQ(terminal.screen().find("\u2591"), std::string::npos);
    endAgent();
}

TEST_F(FullScreen, HeedsWhatTheTerminalCanAndTheUserWants)
{
    const struct {
        const char* environment;
        bool isUnicode;
        bool isColoured;
    } cases[] = {{"", true, true}, {"NO_COLOR=1", true, false}, {"LC_ALL=C", false, true}};
    for (const auto& wanted : cases) {
        startAgent(wanted.environment);
        EXPECT_EQ(terminal.screen().find("\u25B8") != std::string::npos, wanted.isUnicode);
        terminal.press("/ standard Enter");
        ASSERT_TRUE(terminal.shows("> (x) Standard-Surround (not available)"));
        EXPECT_EQ(terminal.screen("-e").find("\x1B[31m") != std::string::npos, wanted.isColoured)
            << terminal.screen("-e");
        endAgent();
    }
}

TEST_F(FullScreen, DumbTerminalsAndPipesGetPlainText)
{
    startAgent("TERM=dumb");
    EXPECT_EQ(terminal.value("alternate_on"), "0");
    terminal.command("choose Solo Mode > Exclusive (XOR)");
    EXPECT_TRUE(terminal.shows("changed Solo Mode > Exclusive (XOR): on"));
    terminal.command("quit");
    EXPECT_TRUE(terminal.isInOrder());

    terminal.command("clear; echo quit | " + agent + " | grep Quit.Kest");
    EXPECT_TRUE(terminal.shows("Quit Kest Settings"));
    EXPECT_TRUE(terminal.isInOrder());
}

} // namespace
} // namespace Kest::Test
