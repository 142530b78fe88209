#include "platform/control/SocketFolders.h"

#include "platform/control/Socket.h"

#include <cstring>
#include <sys/socket.h>

namespace Kest::Control {

std::vector<std::string> socketFolders(const Settings::SystemPaths& paths)
{
    std::vector<std::string> folders;
    if (const auto runtime = runtimeFolder(); !runtime.empty())
        folders.push_back(runtime + "/kest-settings");
    folders.push_back(paths.absoluteSettingsFolder() + "/Control");
    return folders;
}

std::string socketPath(const std::string& folder) { return folder + "/socket"; }

std::optional<sockaddr_un> socketAddress(const std::string& path)
{
    sockaddr_un address{};
    if (path.size() >= sizeof address.sun_path)
        return std::nullopt;
    address.sun_family = AF_UNIX;
    std::memcpy(address.sun_path, path.c_str(), path.size() + 1);
    return address;
}

} // namespace Kest::Control
