// The Backend's life: what stands before its threads start, and in which order all of it ends.
#include "backend/Backend.h"

#include "backend/SettingsFile.h"
#include "backend/SignalsBlocked.h"
#include "lipc/SharedFile.h"
#include "lipc/SharedNumber.h"
#include "lipc/ShmManaged.h"
#include "lipc/VersionBuffer.h"
#include "log/Log.h"
#include "log/Output.h"

#include <cerrno>
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
        refuseHost();
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

// A host that is not running yet is accepted, and so is one that has not published its word size yet. That
// one is checked again in each pass of the monitor.
bool Backend::acceptsHost()
{
    const LIPC::ShmManagedOpen<LIPC::VersionBuffer> version(systemPaths.versionSegment.c_str());
    if (version.contents() == nullptr)
        return true;
    const auto wordSize = LIPC::loadShared(version.contents()->wordSize);
    versionIsPending = wordSize == LIPC::VersionBuffer::kNotPublished;
    return versionIsPending || wordSize == kAcceptedWordSize;
}

void Backend::refuseHost()
{
    Lct::print("K3DHost running in wrong architecture (32 bits : should be 64 )");
    ++hostArchMismatch;
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
