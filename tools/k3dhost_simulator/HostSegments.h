// Creates and removes the two segments that a host publishes.
#pragma once

#include "lipc/SessionBuffer.h"
#include "lipc/VersionBuffer.h"
#include "tools/k3dhost_simulator/Failure.h"

#include <sys/types.h>

namespace K3DHostSimulator {

/// Returns the id of a running process, other than this one, that has created one of the two segments; 0 if
/// there is none. Does not find a process in another process namespace. Creates missing key files.
pid_t runningHost();

/// The two segments of one running host. Their sizes are the `kSegmentBytes` of their types in `LIPC`. They
/// initially contain zeros. The destructor removes the segments; if the process is killed, they remain.
class HostSegments {
public:
    HostSegments() = default;
    ~HostSegments() { remove(); }
    HostSegments(const HostSegments&) = delete;
    HostSegments& operator=(const HostSegments&) = delete;

    /// Creates both segments or none. If an ended process has left segments, first removes them and prints
    /// one line on standard error. Fails if a host is running or the system refuses to remove or create a
    /// segment.
    Failure create();
    /// Detaches and removes the segments that this object has created, if any.
    void remove();

    /// Return the contents of a segment; null if this object has no segments.
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
