// Finds a segment in /proc's list of all segments.
#include "tools/kest_inspect/Segment.h"
#include "tools/kest_inspect/SystemQueries.h"

#include <fstream>
#include <sstream>

namespace KestInspect {
namespace {

constexpr std::size_t kPage = 4096;

} // namespace

std::optional<pid_t> creatorOfSegment(std::size_t bytes)
{
    std::ifstream list("/proc/sysvipc/shm");
    std::string line;
    std::getline(list, line); // the columns' names
    while (std::getline(list, line)) {
        std::istringstream columns(line);
        key_t key = 0;
        std::string skipped; // number and permissions
        std::size_t size = 0;
        pid_t creator = 0;
        const bool isRead{columns >> key >> skipped >> skipped >> size >> creator};
        if (isRead && key != 0 && size >= bytes && size < bytes + kPage && creator > 0 && !hasEnded(creator))
            return creator;
    }
    return std::nullopt;
}

} // namespace KestInspect
