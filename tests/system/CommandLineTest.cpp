// The command lines of all programs: what --help and --version print, and the one line after a mistake.
#include "tests/system/World.h"

#include <chrono>
#include <filesystem>
#include <string>
#include <vector>

namespace Kest::Test {
namespace {

namespace fs = std::filesystem;

struct Run {
    int status;
    std::string output;
    std::string errors;
};

/// Runs a program of the build with the arguments, as a shell reads them.
Run run(const std::string& name, const std::string& arguments)
{
    Process shell({"/bin/sh", "-c",
                   "exec " + program(name) + " " + arguments + " >/tmp/output 2>/tmp/errors </dev/null"});
    const int status = shell.exitStatus();
    return {status, readFile("/tmp/output"), readFile("/tmp/errors")};
}

bool isOneLine(const std::string& text) { return !text.empty() && text.find('\n') == text.size() - 1; }

class CommandLine : public World {
protected:
    static void refuses(const std::string& name, const std::string& arguments, const std::string& reason)
    {
        const auto refused = run(name, arguments);
        EXPECT_EQ(refused.status, 2) << name << ' ' << arguments;
        EXPECT_TRUE(refused.errors.starts_with(name + ": ")) << arguments << '\n' << refused.errors;
        EXPECT_TRUE(isOneLine(refused.errors)) << arguments << '\n' << refused.errors;
        EXPECT_NE(refused.errors.find(reason), std::string::npos) << arguments << '\n' << refused.errors;
        EXPECT_EQ(refused.output, "") << arguments;
    }
    static void answersHelp(const std::string& name)
    {
        const auto help = run(name, "--help");
        EXPECT_EQ(help.status, 0) << name;
        EXPECT_NE(help.output.find(name + " "), std::string::npos) << help.output;
        EXPECT_EQ(help.errors, "") << name;
    }
};

TEST_F(CommandLine, AnAgentSaysWhatItIsAndStartsNothing)
{
    for (const std::string name : {"kest-settings", "kest-settings-terminal", "kest-settings-appkit"}) {
        if (!fs::exists(program(name)))
            continue; // not built here
        answersHelp(name);
        const auto version = run(name, "--version");
        EXPECT_EQ(version.status, 0);
        EXPECT_TRUE(version.output.starts_with(name + " ") && isOneLine(version.output)) << version.output;
        refuses(name, "--verbose", "'--verbose'");
        refuses(name, "--version extra", "'extra'");
        refuses(name, "-v", "'-v'");
    }
    EXPECT_TRUE(fs::is_empty(home())) << "settings were written";
    EXPECT_FALSE(fs::exists(kFifo));
}

TEST_F(CommandLine, AToolNamesTheArgumentAndWhatItExpects)
{
    for (const std::string name :
         {"kest-inspect", "kest-settings-ctl", "k3dhost-simulator", "encoder-simulator"}) {
        answersHelp(name);
        refuses(name, "--output /tmp/a --verbose", "--verbose");
    }
    refuses("kest-inspect", "", "session, watch or doctor");
    refuses("kest-inspect", "sessions", "'sessions'");
    refuses("kest-inspect", "session watch", "watch");
    refuses("kest-inspect", "doctor --for 1", "--for are for watch");
    refuses("kest-inspect", "watch --for", "--for: expected one value");
    for (const std::string wrong : {"9", "60001", "20x", "0x20", "''", "99999999999", "' 20'", "2e1"})
        refuses("kest-inspect", "watch --interval " + wrong,
                "--interval: expected a number of milliseconds from 10");
    const std::string ctl = "kest-settings-ctl";
    refuses(ctl, "", "expected menu, get, choose or watch");
    refuses(ctl, "choose", "choose requires a PATH");
    refuses(ctl, "watch 'Solo Mode'", "unexpected argument 'Solo Mode'");
    refuses(ctl, "get 'Solo Mode' --yes", "--yes is for choose");
    refuses(ctl, "menu --timeout 0", "--timeout: expected a number of seconds from 1");
    refuses("k3dhost-simulator", "--check --scenario -", "--scenario excludes --check");
    const std::string encoder = "encoder-simulator";
    refuses(encoder, "--steps 5", "--output is required");
    refuses(encoder, "--output ''", "--output: expected a path");
    refuses(encoder, "--output /tmp/a --type 'a b'", "--type: expected one word");
    refuses(encoder, "--output /tmp/a --seconds nan",
            "--seconds: expected a number of seconds from 0 to 86400");
    refuses(encoder, "--output /tmp/a --fail-at 101", "--fail-at: expected a percentage from 0 to 100");
    refuses(encoder, "--output /tmp/a --fail-at 10 --silent-at 10", "excludes");
    refuses(encoder, "--output \"$(head -c 4000 /dev/zero | tr '\\0' a)\"", "4000 bytes"); // relative
    EXPECT_FALSE(fs::exists("/tmp/a"));

    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(run("kest-inspect", "watch --json --interval 010 --for 01").status, 0);
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::seconds(1)) << "01 is decimal";
}

} // namespace
} // namespace Kest::Test
