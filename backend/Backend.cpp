// The Backend's start and end, and their order.
#include "backend/Backend.h"

#include "backend/SettingsFile.h"
#include "lipc/SharedFile.h"
#include "log/Log.h"

#include <cerrno>
#include <cstring>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Kest::Settings {
namespace {

void reportLastUserFile(const std::string& path)
{
    Lct::Log(Lct::eLogWarning, "last user", "%.300s not written: %s", path.c_str(), std::strerror(errno));
}

} // namespace

Backend::Backend(SystemPaths paths, std::chrono::nanoseconds period)
    : systemPaths(std::move(paths)), properties(std::make_unique<juce::ApplicationProperties>()),
      settingsFile(std::make_unique<SettingsFile>(*properties, systemPaths)),
      reader(systemPaths.encodingProgressFifo, [this](std::int32_t number, std::int32_t pid,
                                                      const char* name) { sendMessage(number, pid, name); }),
      monitor(systemPaths, period,
              {.message = [this](std::int32_t number) { sendMessage(number, 0, ""); },
               .hostChanged =
                   [this] {
                       if (auto* callback = hostStateCallback.load())
                           callback(messageContext);
                   },
               .eachPass = [this] { reader.checkPipe(); }}), // so that the reader can sleep without a timeout
      startFailure(reader.start())
{
    if (monitor.confirmHost())
        save_username(systemPaths.lastUserFile);
    if (startFailure == 0)
        startFailure = monitor.start();
}

Backend::~Backend()
{
    messageCallback = nullptr; // the receiver is being destroyed
    hostStateCallback = nullptr;
    monitor.stop();
    reader.stop();
}

void Backend::save_username(const std::string& path)
{
    const passwd* user = getpwuid(geteuid());
    if (user == nullptr)
        return;
    const int file = LIPC::openSharedFile(path.c_str(), LIPC::kModeWorldWritable);
    if (file < 0) {
        if (errno != ENOENT) // optional: systems without this folder have no such file
            reportLastUserFile(path);
        return;
    }
    const auto line = std::string(user->pw_name) + "\n";
    if (ftruncate(file, 0) != 0 || write(file, line.data(), line.size()) != static_cast<ssize_t>(line.size()))
        reportLastUserFile(path);
    fchmod(file, LIPC::kModeWorldWritable); // regardless of the umask: every user overwrites it
    close(file);
}

void Backend::sendMessage(std::int32_t number, std::int32_t type, const char* description) const
{
    if (auto* callback = messageCallback.load())
        callback(messageContext, number, type, description);
}

encodingStatus Backend::getEncodingStatus(int pid) const
{
    return reader.query([&](const EncodingTable& table) {
        const auto* found = table.find(pid);
        return found == nullptr ? encodingStatus() : *found;
    });
}

encodingStatus Backend::getEncodingStatus(const ProcessIdentity& process) const
{
    return reader.query([&](const EncodingTable& table) {
        const auto* found = table.find(process);
        return found == nullptr ? encodingStatus() : *found;
    });
}

} // namespace Kest::Settings
