#include "platform/posix/SingleInstance.h"

#include "app/KestSettingsAppDelegate.h"
#include "backend/AgentLock.h"
#include "backend/HomeFolder.h"
#include "log/Log.h"
#include "log/Output.h"

#include <array>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

namespace Kest::Posix {
namespace {

// For the lock, the wake-ups, the bus, the pipe's ends, the settings files and temporary ones of libraries.
constexpr std::size_t kNeededDescriptors = 32;
constexpr int kLastOutputMilliseconds = 200;

/// Opens /dev/null for a closed standard stream. Otherwise the next opened file gets its number, and all
/// output is written to that file.
bool openStandardStreams()
{
    for (int descriptor = STDIN_FILENO; descriptor <= STDERR_FILENO; ++descriptor)
        if (fcntl(descriptor, F_GETFD) < 0 && open("/dev/null", O_RDWR) != descriptor)
            return false;
    return true;
}

bool hasDescriptors()
{
    std::array<int, kNeededDescriptors> probes{};
    for (auto& probe : probes)
        probe = fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
    const int failure = errno;
    for (const int probe : probes)
        if (probe >= 0)
            close(probe);
    errno = failure;
    return probes.back() >= 0;
}

int cannotStart(int failure)
{
    Lct::printError("Kest Settings cannot start: %s\n", std::strerror(failure));
    return 1;
}

} // namespace

int runSingleInstance(const std::function<int(const Settings::SystemPaths&)>& agent, int statusIfRunning)
{
    std::atexit([] { Lct::flushOutput(kLastOutputMilliseconds); });
    if (!openStandardStreams() || !hasDescriptors())
        return cannotStart(errno);
    if (const auto problem = Settings::repairHome(); !problem.empty())
        Lct::Log(Lct::eLogWarning, "home", "%s", problem.c_str());
    const Settings::SystemPaths paths;
    const Settings::AgentLock lock(paths.absoluteSettingsFolder());
    if (lock.isHeldByAnother()) {
        Lct::print("Kest Settings is already running (process %d); kest-settings-ctl controls it.\n",
                   lock.holder());
        return statusIfRunning;
    }
    return agent(paths);
}

bool startApplication(App::KestSettingsAppDelegate& application)
{
    application.awakeFromNib();
    const int failure = application.startError();
    if (failure != 0)
        cannotStart(failure);
    return failure == 0;
}

int runApplication(App::KestSettingsAppDelegate& application, const std::function<bool()>& loop)
{
    if (!startApplication(application))
        return 1;
    application.applicationDidFinishLaunching();
    const bool succeeded = loop();
    application.applicationWillTerminate();
    return succeeded ? 0 : 1;
}

} // namespace Kest::Posix
