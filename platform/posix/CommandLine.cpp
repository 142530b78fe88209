#include "platform/posix/CommandLine.h"

#include "app/About.h"
#include "backend/SystemPaths.h"
#include "log/Output.h"

#include <string_view>

namespace Kest::Posix {
namespace {

constexpr int kWrongArgument = 2;
constexpr int kOutputMilliseconds = 1000;

int answer(std::string_view argument, const char* program, const char* purpose)
{
    if (argument == "--help")
        Lct::print("usage: %s [--help | --version]\n\n%s\nSettings are changed in its menu and saved in\n"
                   "%s/%s.xml.\n",
                   program, purpose, Settings::SystemPaths().settingsFolder.c_str(), Settings::kSettingsName);
    else
        Lct::print("%s %s\n", program, App::about().version.c_str());
    return 0;
}

} // namespace

std::optional<int> answerArguments(int argc, const char* const* argv, const char* purpose)
{
    if (argc < 2)
        return std::nullopt;
    const std::string_view path = argv[0];
    const char* program = path.data() + path.rfind('/') + 1; // npos + 1 is 0
    int status = 0;
    for (int i = 1; i < argc && status == 0; ++i) {
        const std::string_view argument = argv[i];
        if (argument != "--help" && argument != "--version") {
            Lct::printError("%s: unexpected argument '%s'; expected --help or --version\n", program, argv[i]);
            status = kWrongArgument;
        }
    }
    if (status == 0)
        status = answer(argv[1], program, purpose);
    Lct::flushOutput(kOutputMilliseconds);
    return status;
}

} // namespace Kest::Posix
