#include "tools/kest_settings_ctl/Options.h"

#include "tools/command_line/CommandLine.h"

namespace KestSettingsCtl {
namespace {

constexpr char kHelp[] =
    R"(usage: kest-settings-ctl COMMAND [options]    controls this user's running settings agent

Commands:
  menu          prints the menu
  get PATH      prints an item, or the items of a submenu
  choose PATH   chooses the item, as a click does, and prints the item afterwards
  watch         prints each change of the menu as one line, until SIGINT or SIGTERM

PATH is the titles of the item's menus and of the item: "Speaker Configuration > Stereo". Case is ignored, except
if two paths differ only in case.

Options:
  --json             prints the agent's reply, a JSON object, or one object per line from watch
  --paths            menu: prints the path of each item that can be chosen
  --yes              choose: confirms "Abort and Delete Output Folder"
  --timeout SECONDS  maximum time to wait for the agent's reply (1 to 86400, default 10)
  --help, --version

Exit status: 0 when done; 1 when no agent is running or the choice is not possible; 2 for a wrong command line.
)";

constexpr int kMaxTimeout = 86'400; // seconds

void require(bool holds, const std::string& error)
{
    if (!holds)
        throw CLI::ValidationError(error);
}

void check(const Options& options)
{
    const bool takesPath = options.command == "get" || options.command == "choose";
    require(takesPath || options.command == "menu" || options.command == "watch",
            "expected menu, get, choose or watch" +
                (options.command.empty() ? "" : ", got '" + options.command + "'"));
    require(takesPath || options.path.empty(), "unexpected argument '" + options.path + "'");
    require(!takesPath || !options.path.empty(), options.command + " requires a PATH");
    require(!options.paths || options.command == "menu", "--paths is only valid with menu");
    require(!options.paths || !options.json, "--paths and --json exclude each other");
    require(!options.yes || options.command == "choose", "--yes is only valid with choose");
}

} // namespace

std::optional<Options> parseOptions(int argc, char** argv, int& exitStatus)
{
    Options options;
    CLI::App app("", "kest-settings-ctl");
    app.set_version_flag("--version", "kest-settings-ctl " KEST_VERSION);
    app.add_option("COMMAND", options.command);
    app.add_option("PATH", options.path);
    app.add_flag("--json", options.json);
    app.add_flag("--paths", options.paths);
    app.add_flag("--yes", options.yes);
    app.add_option("--timeout", options.timeout)
        ->transform(CommandLine::number("a number of seconds", 1, kMaxTimeout));
    app.callback([&] { check(options); });
    if (!CommandLine::parse(app, kHelp, argc, argv, exitStatus))
        return std::nullopt;
    return options;
}

} // namespace KestSettingsCtl
