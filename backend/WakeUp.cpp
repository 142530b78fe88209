#include "backend/WakeUp.h"

#include <array>
#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

namespace Kest::Settings {

WakeUp::WakeUp()
{
    if (pipe(ends) != 0) {
        ends[0] = ends[1] = -1;
        return;
    }
    for (const int end : ends) {
        fcntl(end, F_SETFD, FD_CLOEXEC);
        fcntl(end, F_SETFL, O_NONBLOCK);
    }
}

WakeUp::~WakeUp()
{
    for (const int end : ends)
        if (end >= 0)
            close(end);
}

// If the pipe is full, the wake-up is raised already.
void WakeUp::raise() const
{
    while (ends[1] >= 0 && write(ends[1], "", 1) < 0 && errno == EINTR)
        ;
}

void WakeUp::clear() const
{
    std::array<char, 64> bytes{};
    while (ends[0] >= 0 && read(ends[0], bytes.data(), bytes.size()) > 0)
        ;
}

} // namespace Kest::Settings
