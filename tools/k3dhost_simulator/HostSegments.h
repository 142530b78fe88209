// Creates and removes the two segments that a host publishes.
#pragma once

#include "lipc/SessionBuffer.h"
#include "lipc/VersionBuffer.h"
#include "tools/k3dhost_simulator/Failure.h"

#include <sys/types.h>

namespace K3DHostSimulator {

/// Returns the live process whose segments exist; 0 if there is none. A host in another process namespace is
/// not found.
pid_t runningHost();

/// The segments of one running host, of exactly the documented sizes, initially zero. The destructor removes
/// them; a killed process leaves them behind.
class HostSegments {
public:
    HostSegments() = default;
    ~HostSegments() { remove(); }
    HostSegments(const HostSegments&) = delete;
    HostSegments& operator=(const HostSegments&) = delete;

    /// Creates both segments or none. Replaces those of an ended process, with one line on standard error.
    /// Fails if a host is running or the system refuses.
    Failure create();
    /// Detaches and removes both segments, if there are any.
    void remove();

    /// Null while there are no segments.
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
