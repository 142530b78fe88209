// Interrupts a thread that waits in poll, by a descriptor that no other process has.
#pragma once

namespace Kest::Settings {

/// A raised wake-up stays raised until it is cleared, so that none is lost between two waits.
class WakeUp {
public:
    WakeUp();
    ~WakeUp();
    WakeUp(const WakeUp&) = delete;
    WakeUp& operator=(const WakeUp&) = delete;

    /// Any thread. Never blocks.
    void raise() const;
    /// Called by the thread that waits.
    void clear() const;

    /// Readable while raised. -1 when the system had no descriptors left; a wait then needs a timeout.
    int descriptor() const { return ends[0]; }

private:
    int ends[2] = {-1, -1};
};

} // namespace Kest::Settings
