#include "platform/control/ListeningSocket.h"

#include "log/Log.h"
#include "platform/control/Socket.h"
#include "platform/control/SocketFolders.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Kest::Control {
namespace {

constexpr int kWaitingConnections = 16;
constexpr mode_t kModeGroupAndOthers = S_IRWXG | S_IRWXO;

// Each of these returns the reason of a failure; an empty text on success.

std::string prepareFolder(const std::string& folder)
{
    if (mkdir(folder.c_str(), S_IRWXU) != 0 && errno != EEXIST)
        return std::strerror(errno);
    const Settings::Descriptor opened(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    struct stat status {};
    if (!opened || fstat(opened.get(), &status) != 0 || status.st_uid != geteuid())
        return "its folder is not a folder of this user";
    if ((status.st_mode & kModeGroupAndOthers) != 0 && fchmod(opened.get(), S_IRWXU) != 0)
        return std::strerror(errno);
    return {};
}

// Removes a socket of this user that refuses connections: the settings are locked, so its agent was killed.
std::string removeStale(const std::string& path, const sockaddr_un& address)
{
    struct stat status {};
    if (lstat(path.c_str(), &status) != 0)
        return errno == ENOENT ? std::string() : std::strerror(errno);
    if (!S_ISSOCK(status.st_mode) || status.st_uid != geteuid())
        return "another file has this name";
    const auto probe = makeSocket();
    if (!probe)
        return std::strerror(errno);
    if (connect(probe.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0 ||
        errno != ECONNREFUSED)
        return "another agent uses it";
    return unlink(path.c_str()) == 0 || errno == ENOENT ? std::string() : std::strerror(errno);
}

std::string listenAt(int socket, const std::string& path, const sockaddr_un& address)
{
    if (bind(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 ||
        chmod(path.c_str(), S_IRUSR | S_IWUSR) != 0 || listen(socket, kWaitingConnections) != 0)
        return std::strerror(errno);
    return {};
}

} // namespace

std::optional<ListeningSocket> ListeningSocket::open(const std::vector<std::string>& folders)
{
    const auto folder = std::ranges::find_if(
        folders, [](const auto& one) { return socketAddress(socketPath(one)).has_value(); });
    const auto path = socketPath(folder == folders.end() ? folders.back() : *folder);
    const auto address = socketAddress(path);
    std::string problem = address ? prepareFolder(*folder) : "the path is too long for a socket";
    if (problem.empty())
        problem = removeStale(path, *address);
    if (problem.empty()) {
        auto socket = makeSocket();
        problem = socket ? listenAt(socket.get(), path, *address) : std::strerror(errno);
        if (problem.empty())
            return ListeningSocket(std::move(socket), path);
    }
    Lct::Log(Lct::eLogWarning, "control", "no control socket at %.300s: %s", path.c_str(), problem.c_str());
    return std::nullopt;
}

ListeningSocket::ListeningSocket(Settings::Descriptor listening, std::string boundPath)
    : socket(std::move(listening)), path(std::move(boundPath))
{
    struct stat status {};
    if (lstat(path.c_str(), &status) == 0) {
        device = status.st_dev;
        inode = status.st_ino;
    }
}

ListeningSocket::~ListeningSocket()
{
    struct stat status {};
    if (socket && lstat(path.c_str(), &status) == 0 && status.st_dev == device && status.st_ino == inode) {
        unlink(path.c_str());
        rmdir(path.substr(0, path.rfind('/')).c_str()); // fails if it is not empty
    }
}

} // namespace Kest::Control
