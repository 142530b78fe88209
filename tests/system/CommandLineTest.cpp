// The command lines of all programs: what --help and --version print, and the one line after a mistake.
#include "tests/system/World.h"

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

} // namespace
} // namespace Kest::Test
