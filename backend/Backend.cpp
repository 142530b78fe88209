// The Backend's life: what stands before its threads start, and in which order all of it ends.
#include "backend/Backend.h"

#include "backend/SettingsFile.h"
#include "lipc/SharedFile.h"
#include "lipc/SharedNumber.h"
#include "lipc/ShmManaged.h"
#include "lipc/VersionBuffer.h"
#include "log/Log.h"
#include "log/Output.h"

#include <cerrno>
#include <csignal>
#include <cstring>
#include <pwd.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace Kest::Settings {
namespace {

constexpr int kAcceptedWordSize = 64;
constexpr mode_t kForAll = 0666;

void reportMarker(const std::string& path)
{
    Lct::Log(Lct::eLogWarning, "last user", "%.300s not written: %s", path.c_str(), std::strerror(errno));
}

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
    const int file = LIPC::openSharedFile(markerPath.c_str(), kForAll);
    if (file < 0) {
        if (errno != ENOENT) // without its folder it is not written
            reportMarker(markerPath);
        return;
    }
    const auto line = std::string(user->pw_name) + "\n";
    if (ftruncate(file, 0) != 0 || write(file, line.data(), line.size()) != static_cast<ssize_t>(line.size()))
        reportMarker(markerPath);
    fchmod(file, kForAll); // whatever the umask: every user overwrites it
    close(file);
}

void Backend::sendMessage(std::int32_t number, std::int32_t type, const char* description) const
{
    if (auto* callback = messageCallback.load())
        callback(messageContext, number, type, description);
}

} // namespace Kest::Settings
