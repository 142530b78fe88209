// kest-inspect: inspects the agent and its host, for support engineers. --help lists its commands.
#include "backend/HomeFolder.h"
#include "tools/kest_inspect/Checks.h"
#include "tools/kest_inspect/Options.h"
#include "tools/kest_inspect/Printed.h"
#include "tools/kest_inspect/Watch.h"

#include <cstdio>

using namespace KestInspect;

namespace {

const Kest::Settings::SystemPaths kPaths;

void print(const Printed& printed, bool asJson)
{
    std::fputs((asJson ? jsonDocument(printed.json) : printed.text).c_str(), stdout);
}

int showSession(bool json)
{
    const auto snapshot = readHost(kPaths);
    print(printed(snapshot), json);
    return snapshot.session ? 0 : 1;
}

int runDoctor(bool json)
{
    const auto findings = runChecks(kPaths);
    print(printed(findings), json);
    return hasNoErrors(findings) ? 0 : 1;
}

} // namespace

int main(int argc, char** argv)
{
    int exitStatus = 0;
    const auto options = parseOptions(argc, argv, exitStatus);
    if (!options)
        return exitStatus;
    if (const auto problem = Kest::Settings::repairHome(); !problem.empty())
        std::fprintf(stderr, "kest-inspect: %s\n", problem.c_str());
    switch (options->command) {
    case Options::Command::session:
        return showSession(options->json);
    case Options::Command::watch:
        watch(kPaths, *options);
        return 0;
    case Options::Command::doctor:
        return runDoctor(options->json);
    }
}
