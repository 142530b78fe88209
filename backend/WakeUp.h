// Wakes a thread that waits in `poll`.
#pragma once

namespace Kest::Settings {

/// A wake-up stays raised until `clear`, so it is not lost if it is raised before the thread waits.
class WakeUp {
public:
    WakeUp();
    ~WakeUp();
    WakeUp(const WakeUp&) = delete;
    WakeUp& operator=(const WakeUp&) = delete;

    /// Raises the wake-up: `descriptor` becomes readable. Any thread; never blocks.
    void raise() const;
    /// Clears the wake-up. Only the waiting thread may call this function; never blocks.
    void clear() const;

    /// Returns the descriptor to poll, which is readable while the wake-up is raised. Returns -1 if the
    /// system has refused a descriptor; then `raise` has no effect, and the thread must poll with a timeout.
    int descriptor() const { return ends[0]; }

private:
    int ends[2] = {-1, -1};
};

} // namespace Kest::Settings
