#include "tools/kest_settings_ctl/Options.h"

#include "tools/command_line/CommandLine.h"

namespace KestSettingsCtl {
namespace {

constexpr char kHelp[] =
    R"(usage: kest-settings-ctl COMMAND [options]    controls the settings agent of this user that is running

Commands:
  menu          prints the menu
  get PATH      prints an item, or the items of a submenu
  choose PATH   does what a click on the item does, and prints the item when that is done
  watch         prints each change of the menu, a line each, until SIGINT or SIGTERM

PATH is an item's title after those of its menus: "Speaker Configuration > Stereo". Upper and lower case differ only
where two paths do not differ otherwise.

Options:
  --json             prints the agent's reply, a JSON object, or one object a line from watch
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
    require(!options.paths || options.command == "menu", "--paths is for menu");
    require(!options.paths || !options.json, "--paths and --json exclude each other");
    require(!options.yes || options.command == "choose", "--yes is for choose");
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
