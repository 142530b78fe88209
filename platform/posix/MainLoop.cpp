#include "platform/posix/MainLoop.h"

#include "log/Output.h"

#include <cerrno>
#include <poll.h>
#include <utility>

namespace Kest::Posix {

void MainLoop::watchInput(int descriptor, std::function<void()> readable)
{
    watches[descriptor] = {POLLIN, std::move(readable)};
}

void MainLoop::watchOutput(int descriptor, std::function<void()> writable)
{
    watches[descriptor] = {POLLOUT, std::move(writable)};
}

bool MainLoop::run()
{
    while (!isQuitting()) {
        auto polled = watched();
        if (poll(polled.data(), static_cast<nfds_t>(polled.size()), -1) < 0) {
            if (errno == EINTR)
                continue;
            Lct::printSystemError("Kest Settings ends: waiting for events failed");
            return false;
        }
        if (polled.front().revents != 0)
            dispatchWakeUps();
        runReady(polled);
    }
    return true;
}

std::vector<pollfd> MainLoop::watched() const
{
    std::vector<pollfd> all{{wakeUpDescriptor(), POLLIN, 0}};
    for (const auto& [descriptor, watch] : watches)
        all.push_back({descriptor, watch.events, 0});
    return all;
}

// A callback may end the loop, or the watch of a later descriptor.
void MainLoop::runReady(const std::vector<pollfd>& polled)
{
    for (std::size_t i = 1; i < polled.size() && !isQuitting(); ++i) {
        const auto watch = watches.find(polled[i].fd);
        if (polled[i].revents == 0 || watch == watches.end())
            continue;
        const auto ready = watch->second.ready; // a copy: the callback may end its own watch
        ready();
    }
}

} // namespace Kest::Posix
