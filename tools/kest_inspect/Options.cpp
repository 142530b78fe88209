#include "tools/kest_inspect/Options.h"

#include <charconv>
#include <cstdio>
#include <getopt.h>
#include <string>

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

constexpr option kOptions[] = {
    {"json", no_argument, nullptr, 'j'},      {"interval", required_argument, nullptr, 'i'},
    {"for", required_argument, nullptr, 'f'}, {"help", no_argument, nullptr, 'h'},
    {"version", no_argument, nullptr, 'v'},   {nullptr, 0, nullptr, 0},
};

constexpr int kLongestInterval = 60'000;
constexpr int kLongestWatch = 1'000'000; // seconds

std::optional<int> wholeNumber(const std::string& text, int least, int most)
{
    int value = 0;
    const char* end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, value);
    if (result.ec != std::errc() || result.ptr != end || value < least || value > most)
        return std::nullopt;
    return value;
}

// Each returns what is wrong.
std::string setInterval(Options& options, const std::string& text)
{
    const auto milliseconds = wholeNumber(text, 10, kLongestInterval);
    options.interval = std::chrono::milliseconds(milliseconds.value_or(0));
    return milliseconds ? "" : "'" + text + "' is no number of milliseconds from 10 to 60000";
}

std::string setLimit(Options& options, const std::string& text)
{
    const auto seconds = wholeNumber(text, 1, kLongestWatch);
    options.limit = std::chrono::seconds(seconds.value_or(0));
    return seconds ? "" : "'" + text + "' is no number of seconds from 1 on";
}

std::string setCommand(Options& options, const std::string& word)
{
    if (word == "session")
        options.command = Options::Command::session;
    else if (word == "watch")
        options.command = Options::Command::watch;
    else if (word == "doctor")
        options.command = Options::Command::doctor;
    else
        return "unknown command '" + word + "'";
    return "";
}

// The words that are left when the options are taken.
std::string setCommand(Options& options, int count, char** words)
{
    if (count == 0)
        return "a command is missing: session, watch or doctor; --help tells more";
    if (count > 1)
        return std::string("unexpected argument '") + words[1] + "'";
    return setCommand(options, words[0]);
}

} // namespace

std::optional<Options> parseOptions(int argc, char** argv, int& exitStatus)
{
    Options options;
    std::string wrong;
    bool isForWatch = false;
    exitStatus = 2;
    for (int letter = 0; wrong.empty() && (letter = getopt_long(argc, argv, "", kOptions, nullptr)) != -1;) {
        if (letter == 'h' || letter == 'v') {
            std::fputs(letter == 'h' ? kHelp : "kest-inspect " KEST_VERSION "\n", stdout);
            exitStatus = 0;
            return std::nullopt;
        }
        if (letter == '?') // getopt_long has said what is wrong
            return std::nullopt;
        options.json |= letter == 'j';
        isForWatch |= letter != 'j';
        if (letter != 'j')
            wrong = letter == 'i' ? setInterval(options, optarg) : setLimit(options, optarg);
    }
    if (wrong.empty())
        wrong = setCommand(options, argc - optind, argv + optind);
    if (wrong.empty() && isForWatch && options.command != Options::Command::watch)
        wrong = "--interval and --for are for watch";
    if (wrong.empty())
        return options;
    std::fprintf(stderr, "kest-inspect: %s\n", wrong.c_str());
    return std::nullopt;
}

} // namespace KestInspect
