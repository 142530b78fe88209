// The Backend's life: what stands before its threads start, and in which order all of it ends.
#include "backend/Backend.h"

#include "backend/SettingsFile.h"
#include "lipc/SharedNumber.h"
#include "lipc/ShmManaged.h"
#include "lipc/VersionBuffer.h"
#include "log/Output.h"

#include <csignal>
#include <fcntl.h>
#include <pwd.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace Kest::Settings {
namespace {

constexpr int kAcceptedWordSize = 64;

/// Threads started while one of these lives get no signals: those are the main thread's business.
class SignalsBlocked {
public:
    SignalsBlocked()
    {
        sigset_t all;
        sigfillset(&all);
        pthread_sigmask(SIG_SETMASK, &all, &before);
    }
    ~SignalsBlocked() { pthread_sigmask(SIG_SETMASK, &before, nullptr); }
    SignalsBlocked(const SignalsBlocked&) = delete;
    SignalsBlocked& operator=(const SignalsBlocked&) = delete;

private:
    sigset_t before{};
};

// Returns the system's error where it refuses a thread.
int startThread(std::thread& thread, const std::function<void()>& body)
{
    const SignalsBlocked blocked;
    try {
        thread = std::thread(body);
    } catch (const std::system_error& refusal) {
        return refusal.code().value();
    }
    return 0;
}

} // namespace

Backend::Backend(SystemPaths paths, std::chrono::nanoseconds period)
    : systemPaths(std::move(paths)), monitorPeriod(period),
      fifoPath(systemPaths.encodingProgressFifo.c_str()),
      properties(std::make_unique<juce::ApplicationProperties>()),
      settingsFile(std::make_unique<SettingsFile>(*properties, systemPaths))
{
    startFailure = startThread(pipeThread, [this] { namedPipeThreadloop(); });
    if (acceptsHost()) {
        save_username(systemPaths.lastUserMarker);
    } else {
        Lct::print("K3DHost running in wrong architecture (32 bits : should be 64 )");
        ++hostArchMismatch;
    }
    if (startFailure == 0)
        startFailure = startThread(monitorThread, [this] { timerThreadloop(); });
}

Backend::~Backend()
{
    messageCallback = nullptr; // whoever listens is about to go
    hostStateCallback = nullptr;
    {
        const MutexLock lock(stopMutex);
        ++stopRequests;
    }
    stopSignal.notify_all();
    progressPipe.wake();
    for (auto* thread : {&pipeThread, &monitorThread})
        if (thread->joinable())
            thread->join();
}

// A host that is not running yet counts as accepted: it is looked for every second.
bool Backend::acceptsHost() const
{
    const LIPC::ShmManagedOpen<LIPC::VersionBuffer> version(systemPaths.versionSegment.c_str());
    return version.contents() == nullptr ||
           LIPC::loadShared(version.contents()->wordSize) == kAcceptedWordSize;
}

void Backend::save_username(const std::string& markerPath)
{
    const passwd* user = getpwuid(geteuid());
    if (user == nullptr)
        return;
    // The folder is everybody's: a link, a pipe or a second name of another file is not what is meant.
    const int file = open(markerPath.c_str(), O_WRONLY | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC, 0666);
    if (file < 0)
        return;
    struct stat status {};
    if (fstat(file, &status) == 0 && S_ISREG(status.st_mode) && status.st_nlink == 1) {
        const std::string line = std::string(user->pw_name) + "\n";
        if (ftruncate(file, 0) == 0) [[maybe_unused]]
            const auto written = write(file, line.data(), line.size());
        fchmod(file, 0666); // whatever the umask: every user overwrites it
    }
    close(file);
}

void Backend::sendMessage(std::int32_t number, std::int32_t type, const char* description) const
{
    if (auto* callback = messageCallback.load())
        callback(messageContext, number, type, description);
}

} // namespace Kest::Settings
