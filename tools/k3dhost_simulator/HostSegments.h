// The two segments that a host publishes: making them and taking them away.
#pragma once

#include "lipc/SessionBuffer.h"
#include "lipc/VersionBuffer.h"
#include "tools/k3dhost_simulator/Failure.h"

#include <sys/types.h>

namespace K3DHostSimulator {

/// The process whose segments exist and that is still alive; 0 when there is none. A host in another process
/// namespace cannot be seen.
pid_t runningHost();

/// The segments of one running host, of exactly the documented sizes and filled with zeros. Removed with this
/// object; a process that is killed leaves them.
class HostSegments {
public:
    HostSegments() = default;
    ~HostSegments() { remove(); }
    HostSegments(const HostSegments&) = delete;
    HostSegments& operator=(const HostSegments&) = delete;

    /// Makes both segments or neither. Those that a dead process left are replaced, with one line on standard
    /// error. Fails when a host is alive already, or when the system refuses.
    Failure create();
    /// Detaches and removes both; nothing when there are none.
    void remove();

    /// Null as long as there are none.
    LIPC::VersionBuffer* version() const { return static_cast<LIPC::VersionBuffer*>(versionSegment.address); }
    LIPC::SessionBuffer* session() const { return static_cast<LIPC::SessionBuffer*>(sessionSegment.address); }

private:
    struct Segment {
        int id = -1;
        void* address = nullptr;
    };

    static Failure create(const char* name, std::size_t bytes, Segment& segment);
    static void remove(Segment& segment);

    Segment versionSegment;
    Segment sessionSegment;
};

} // namespace K3DHostSimulator
