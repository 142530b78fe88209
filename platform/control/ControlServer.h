// The server of the control socket, through which other programs of the user read the menu and choose items.
#pragma once

#include "app/MenuObserver.h"
#include "backend/SystemPaths.h"
#include "platform/control/ServerThread.h"
#include "platform/control/Socket.h"

#include <memory>
#include <string>
#include <vector>

namespace Kest::App {
class FrontEnd;
class KestSettingsAppDelegate;
} // namespace Kest::App

namespace Kest::Control {

class MenuCommands;

/// Serves the control socket while this object exists. The destructor sends the queued replies as far as this
/// is possible without blocking, and removes the socket. Main thread only. The application and the front end
/// must outlive this object.
class ControlServer final : public App::MenuObserver {
public:
    ControlServer(App::KestSettingsAppDelegate& application, App::FrontEnd& frontEnd, ListeningSocket socket,
                  const ServerLimits& limits = {});
    ~ControlServer() override;
    ControlServer(const ControlServer&) = delete;
    ControlServer& operator=(const ControlServer&) = delete;

    void menuChanged(const App::MenuChanges& changes) override;
    void abortEnded(int pid, const std::string& failure) override;

private:
    Outbox outbox;
    const std::shared_ptr<MenuCommands> commands; // posted jobs do nothing after it is destroyed
    ServerThread thread;                          // destroyed first, because it uses the other members
};

/// Creates the user's control socket and returns a running server for it. Returns null and logs one line on
/// failure; the agent then runs without a server. Main thread.
std::unique_ptr<App::MenuObserver> startServer(App::KestSettingsAppDelegate& application,
                                               App::FrontEnd& frontEnd, const Settings::SystemPaths& paths);

} // namespace Kest::Control
