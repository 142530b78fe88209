#include "tools/kest_inspect/Options.h"

#include "tools/command_line/CommandLine.h"

#include <map>

namespace KestInspect {
namespace {

constexpr char kHelp[] =
    R"(Usage: kest-inspect COMMAND [options]

Helps to find out why a setting does not reach K3DHost, or why the menu of the agent (kest-settings or
kest-settings-terminal) is wrong. Changes nothing.

Commands:
  doctor     checks the host, the agent, its files, the encoders' pipe and the tray. Prints one line per check,
             which begins with ok, warning (may be intentional) or error. After an arrow it says what to do
  session    prints the host's session: its clients, the agent's record with all settings, the default bus
  watch      prints the session, then one line per change, until SIGINT, SIGTERM or SIGHUP

Options:
  --json             prints JSON: one object per line for watch, one document for the others
  --interval MS      watch: polling interval in ms (10 to 60000, default 200)
  --for SECONDS      watch: ends after this time (1 to 1000000)
  --help, --version

Exit status:
  0   success, also if doctor found only warnings
  1   session: there is no session; doctor: an error was found
  2   wrong command line
The manual page kest-inspect(1) describes the JSON.
)";

const std::map<std::string, Options::Command> kCommands = {
    {"session", Options::Command::session},
    {"watch", Options::Command::watch},
    {"doctor", Options::Command::doctor},
};

constexpr int kMaxInterval = 60'000;
constexpr int kMaxWatch = 1'000'000; // seconds

} // namespace

std::optional<Options> parseOptions(int argc, char** argv, int& exitStatus)
{
    Options options;
    std::string command;
    CLI::App app("", "kest-inspect");
    app.set_version_flag("--version", "kest-inspect " KEST_VERSION);
    app.add_option("COMMAND", command);
    app.add_flag("--json", options.json);
    const auto* interval = app.add_option("--interval", options.interval)
                               ->transform(CommandLine::number("a number of milliseconds", 10, kMaxInterval));
    const auto* limit = app.add_option("--for", options.seconds)
                            ->transform(CommandLine::number("a number of seconds", 1, kMaxWatch));
    app.callback([&] {
        const auto found = kCommands.find(command);
        if (found == kCommands.end())
            throw CLI::ValidationError("COMMAND", "expected session, watch or doctor" +
                                                      (command.empty() ? "" : ", got '" + command + "'"));
        options.command = found->second;
        if (options.command != Options::Command::watch && interval->count() + limit->count() > 0)
            throw CLI::ValidationError("--interval and --for are only valid with watch");
    });
    if (!CommandLine::parse(app, kHelp, argc, argv, exitStatus))
        return std::nullopt;
    return options;
}

} // namespace KestInspect
