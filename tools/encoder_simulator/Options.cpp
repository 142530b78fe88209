#include "tools/encoder_simulator/Options.h"

#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <getopt.h>

namespace EncoderSimulator {
namespace {

constexpr char kHelp[] =
    R"(encoder-simulator --output PATH [options]    plays an offline encoder that reports its progress

  --output PATH        the file to write; its folders are made
  --seconds S          how long it takes, 10 unless told
  --type WORD          what kind of encoding it is, "Main" unless told
  --steps N            progress lines after that of 0 per cent, 1 to 1000, 20 unless told
  --fail-at PERCENT    reports this percentage, then an error, and exits with 1
  --silent-at PERCENT  reports this percentage and ends without another word, with 0
  --compact            writes its lines without blanks
  --fifo PATH          the pipe to report to, /tmp/kest_settings_enc_progress_fifo unless told

Without a reader of the pipe it encodes all the same and looks for one every 50 ms. Each new reader is told
path, type and the last percentage.
)";

constexpr option kOptions[] = {
    {"output", required_argument, nullptr, 'o'},  {"seconds", required_argument, nullptr, 's'},
    {"type", required_argument, nullptr, 't'},    {"steps", required_argument, nullptr, 'n'},
    {"fail-at", required_argument, nullptr, 'f'}, {"silent-at", required_argument, nullptr, 'q'},
    {"compact", no_argument, nullptr, 'c'},       {"fifo", required_argument, nullptr, 'p'},
    {"help", no_argument, nullptr, 'h'},          {nullptr, 0, nullptr, 0},
};

// A line must fit one write to a pipe that is not cut up.
constexpr std::size_t kLongestText = 4000;

std::optional<int> wholeNumber(const std::string& text, int least, int most)
{
    int value = 0;
    const char* end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, value);
    if (result.ec != std::errc() || result.ptr != end || value < least || value > most)
        return std::nullopt;
    return value;
}

std::string setPercent(std::optional<int>& percent, const std::string& text)
{
    percent = wholeNumber(text, 0, 100);
    return percent ? "" : "'" + text + "' is no percentage";
}

std::string setSeconds(Options& options, const std::string& text)
{
    constexpr double kDay = 24.0 * 60 * 60;
    char* end = nullptr;
    options.seconds = std::strtod(text.c_str(), &end);
    const bool fits = options.seconds >= 0 && options.seconds <= kDay;
    return !text.empty() && *end == '\0' && fits ? "" : "'" + text + "' is no number of seconds";
}

std::string setSteps(Options& options, const std::string& text)
{
    const auto steps = wholeNumber(text, 1, 1000);
    options.steps = steps.value_or(1);
    return steps ? "" : "'" + text + "' is no number of steps (1 to 1000)";
}

std::string setOutput(Options& options, const std::string& text)
{
    std::error_code failure;
    options.output = std::filesystem::absolute(text, failure).string();
    return text.empty() || failure ? "--output needs a path" : "";
}

std::string setType(Options& options, const std::string& text)
{
    options.type = text;
    return text.empty() || text.find_first_of(" \t\n\r") != std::string::npos ? "--type needs one word" : "";
}

// Takes one option; returns what is wrong with its value.
std::string apply(Options& options, int letter, const std::string& value)
{
    switch (letter) {
    case 'o':
        return setOutput(options, value);
    case 's':
        return setSeconds(options, value);
    case 't':
        return setType(options, value);
    case 'n':
        return setSteps(options, value);
    case 'f':
        return setPercent(options.failAt, value);
    case 'q':
        return setPercent(options.silentAt, value);
    case 'p':
        options.fifo = value;
        return "";
    default:
        options.compact = true;
        return "";
    }
}

std::string whatIsWrong(const Options& options)
{
    if (options.output.empty())
        return "--output is missing";
    if (options.output.size() > kLongestText || options.type.size() > kLongestText)
        return "the path or the type is longer than 4000 bytes";
    if (options.output.find_first_of("\n\r") != std::string::npos)
        return "the path cannot be told in one line";
    if (options.failAt && options.silentAt)
        return "--fail-at and --silent-at exclude each other";
    return "";
}

} // namespace

std::optional<Options> parseOptions(int argc, char** argv, int& exitStatus)
{
    Options options;
    std::string wrong;
    exitStatus = 2;
    for (int letter = 0; wrong.empty() && (letter = getopt_long(argc, argv, "", kOptions, nullptr)) != -1;) {
        if (letter == 'h') {
            std::fputs(kHelp, stdout);
            exitStatus = 0;
            return std::nullopt;
        }
        if (letter == '?') // getopt_long has said what is wrong
            return std::nullopt;
        wrong = apply(options, letter, optarg == nullptr ? "" : optarg);
    }
    if (wrong.empty() && optind < argc)
        wrong = std::string("unexpected argument '") + argv[optind] + "'";
    if (wrong.empty())
        wrong = whatIsWrong(options);
    if (wrong.empty())
        return options;
    std::fprintf(stderr, "encoder-simulator: %s\n", wrong.c_str());
    return std::nullopt;
}

} // namespace EncoderSimulator
