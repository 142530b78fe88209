// Interrupts a thread that waits in poll, through a private descriptor.
#pragma once

namespace Kest::Settings {

/// A raised wake-up stays raised until `clear`, so that none is lost between two waits.
class WakeUp {
public:
    WakeUp();
    ~WakeUp();
    WakeUp(const WakeUp&) = delete;
    WakeUp& operator=(const WakeUp&) = delete;

    /// Raises the wake-up. Any thread. Never blocks.
    void raise() const;
    /// Clears the wake-up. Only the waiting thread calls it.
    void clear() const;

    /// Returns the descriptor to poll, readable while raised; -1 if the system had no descriptors left: use a
    /// timeout then.
    int descriptor() const { return ends[0]; }

private:
    int ends[2] = {-1, -1};
};

} // namespace Kest::Settings
