#include "tools/encoder_simulator/Options.h"

#include "tools/command_line/CommandLine.h"

#include <filesystem>

namespace EncoderSimulator {
namespace {

constexpr char kHelp[] =
    R"(encoder-simulator --output PATH [options]    simulates an offline encoder that reports its progress

  --output PATH        the file to write; missing folders are created
  --seconds S          duration in seconds (0 to 86400, default 10)
  --type WORD          type of the encoding (default Main)
  --steps N            progress lines after that of 0 per cent (1 to 1000, default 20)
  --fail-at PERCENT    reports this percentage, then an error, and exits with 1
  --silent-at PERCENT  reports this percentage, then nothing more, and exits with 0
  --compact            writes its lines without blanks
  --fifo PATH          the pipe to report to (default /tmp/kest_settings_enc_progress_fifo)

If the pipe has no reader, it encodes anyway and retries every 50 ms. Each new reader gets the path, the type
and the last percentage.
)";

constexpr int kMaxSteps = 1000;
constexpr int kPercent = 100;
constexpr double kMaxSeconds = 24.0 * 60 * 60;

// Each reported line must fit in one write to a pipe, which is then not split.
CLI::Validator line(const std::string& what, const char* forbidden, bool isPath)
{
    return {[=](std::string& text) -> std::string {
                constexpr std::size_t kMaxBytes = 4000;
                std::error_code failure;
                if (isPath && !text.empty())
                    text = std::filesystem::absolute(text, failure).string();
                const bool isValid = !text.empty() && text.size() <= kMaxBytes && !failure &&
                                     text.find_first_of(forbidden) == std::string::npos;
                return isValid ? "" : "expected " + what + " of 1 to 4000 bytes";
            },
            ""};
}

} // namespace

std::optional<Options> parseOptions(int argc, char** argv, int& exitStatus)
{
    using CommandLine::number;
    Options options;
    CLI::App app("", "encoder-simulator");
    app.add_option("--output", options.output)
        ->required()
        ->transform(line("a path without line feeds", "\n\r", true));
    app.add_option("--type", options.type)->transform(line("one word", " \t\n\r", false));
    app.add_option("--seconds", options.seconds)->transform(number("a number of seconds", 0.0, kMaxSeconds));
    app.add_option("--steps", options.steps)->transform(number("a number of steps", 1, kMaxSteps));
    auto* failAt =
        app.add_option("--fail-at", options.failAt)->transform(number("a percentage", 0, kPercent));
    app.add_option("--silent-at", options.silentAt)
        ->transform(number("a percentage", 0, kPercent))
        ->excludes(failAt);
    app.add_flag("--compact", options.compact);
    app.add_option("--fifo", options.fifo);
    if (!CommandLine::parse(app, kHelp, argc, argv, exitStatus))
        return std::nullopt;
    return options;
}

} // namespace EncoderSimulator
