#include "platform/control/ControlServer.h"

#include "app/FrontEnd.h"
#include "log/Log.h"
#include "platform/control/MenuCommands.h"
#include "platform/control/SocketFolders.h"

#include <system_error>
#include <utility>

namespace Kest::Control {

ControlServer::ControlServer(App::KestSettingsAppDelegate& application, App::FrontEnd& frontEnd,
                             ListeningSocket socket, const ServerLimits& limits)
    : commands(std::make_shared<MenuCommands>(application, outbox)),
      thread(
          std::move(socket), outbox, commands->watchers(),
          [&frontEnd, weak = std::weak_ptr(commands)](ClientId client, const Request& request) {
              frontEnd.post([weak, client, request] {
                  if (const auto living = weak.lock())
                      living->run(request, client);
              });
          },
          limits)
{}

ControlServer::~ControlServer() = default;

void ControlServer::menuChanged(const App::MenuChanges& changes) { commands->menuChanged(changes); }

void ControlServer::abortEnded(int pid, const std::string& failure) { commands->abortEnded(pid, failure); }

std::unique_ptr<App::MenuObserver> startServer(App::KestSettingsAppDelegate& application,
                                               App::FrontEnd& frontEnd, const Settings::SystemPaths& paths)
{
    auto socket = ListeningSocket::open(socketFolders(paths));
    if (!socket)
        return nullptr;
    try {
        return std::make_unique<ControlServer>(application, frontEnd, std::move(*socket));
    } catch (const std::system_error& failure) {
        Lct::Log(Lct::eLogWarning, "control", "cannot start the thread of the control socket: %s",
                 failure.what());
        return nullptr;
    }
}

} // namespace Kest::Control
