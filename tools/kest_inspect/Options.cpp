#include "tools/kest_inspect/Options.h"

#include "tools/command_line/CommandLine.h"

#include <map>

namespace KestInspect {
namespace {

constexpr char kHelp[] =
    R"(kest-inspect COMMAND [options]    looks at the settings agent and at K3DHost; changes nothing

Commands:
  session    what stands in the host's session: its clients, the agent's record, the default bus
  watch      each change of the session as it happens, a line each, until SIGINT or SIGTERM
  doctor     checks all that the agent depends on, a line each: ok, note (may be meant so) or wrong

Options:
  --json             for programs: one document, or one object a line from watch
  --interval MS      watch: milliseconds between two looks, 10 to 60000, 200 unless told
  --for SECONDS      watch: ends after this time
  --help, --version

Exit status: 0 when all is well; 1 when there is no session (session), or when something is wrong (doctor);
2 for a wrong command line.
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
            throw CLI::ValidationError("--interval and --for are for watch");
    });
    if (!CommandLine::parse(app, kHelp, argc, argv, exitStatus))
        return std::nullopt;
    return options;
}

} // namespace KestInspect
