#include "tools/k3dhost_simulator/Options.h"

#include "tools/command_line/CommandLine.h"

namespace K3DHostSimulator {
namespace {

constexpr char kHelp[] =
    R"(k3dhost-simulator [--scenario FILE|-]    simulates a host for the settings agent
k3dhost-simulator --check                checks whether a host is running: exit status 0 if so, otherwise 1

The host starts at once, unless the scenario's first command is start; with "-" it starts only on the command
start. After the last command of a FILE it runs until SIGTERM, SIGINT or SIGHUP; with "-" it stops at
the end of the input. Exit status: 0; 1 if a command or a wait failed, or a host is already running; 2 for a
wrong command line or scenario.

Scenario, one command per line; a line that begins with # is a comment:
  wait 300ms | wait 2s
  wait for LINE [within 5s]       until a write of the agent prints LINE (see below); default 10s.
                                  An earlier LINE since the last start counts, if no wait has used it.
  bus add ID NAME                 at most 64 bytes each; in double quotes \xNN is any byte except NUL,
  bus rename ID NAME              \\ a backslash and \" a quote
  bus remove ID
  message NUMBER                  posts a message to the agent
  start [64|32] [without KestSettings]
                                  new segments without buses; a running host is stopped first
  stop                            removes the segments
  kill                            kills the simulator, so that its segments remain
  end                             stops the host and exits

Standard output, one line for each event:
  host started, 64 bit            host started, 32 bit, without KestSettings
  host stopped                    host killed
  bus ID NAME added               bus ID NAME removed              bus ID NAME renamed to NAME
  message -7
for each write of the agent:
  SoloMode 1                      HdxAuxTrackDelay 2               DAWLinkControl 1
  defaultPannerObjects 0          LatencyCompensationControl 1     PhysMonConfig 7
  Facility Studio A               default bus NAME (id ID)         default bus (id ID)
and for each write to bytes that the agent must not write:
  FOREIGN WRITE at offset N       FOREIGN WRITE at offset N of LIPC_VERSION
)";

} // namespace

std::optional<Options> parseOptions(int argc, char** argv, int& exitStatus)
{
    Options options;
    CLI::App app("", "k3dhost-simulator");
    auto* scenario = app.add_option("--scenario", options.scenario);
    app.add_flag("--check", options.check)->excludes(scenario);
    if (!CommandLine::parse(app, kHelp, argc, argv, exitStatus))
        return std::nullopt;
    return options;
}

} // namespace K3DHostSimulator
