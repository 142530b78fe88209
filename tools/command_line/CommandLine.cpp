#include "tools/command_line/CommandLine.h"

namespace CommandLine {

bool parse(CLI::App& app, const std::string& help, int argc, char** argv, int& exitStatus)
{
    constexpr int kWrongCommandLine = 2;
    app.set_help_flag("--help");
    app.formatter_fn([&](const CLI::App*, const std::string&, CLI::AppFormatMode) { return help; });
    app.failure_message([](const CLI::App* failed, const CLI::Error& error) {
        std::string reason = error.what();
        if (error.get_name() == "ArgumentMismatch") // CLI11's text: "--for: 1 required INT missing"
            reason = reason.substr(0, reason.find(':')) + ": expected one value";
        return failed->get_name() + ": " + reason + "\n";
    });
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& end) {
        exitStatus = app.exit(end) == 0 ? 0 : kWrongCommandLine;
        return false;
    }
    return true;
}

} // namespace CommandLine
