// Lets only one agent run for each settings folder.
#pragma once

#include <string>

namespace Kest::Settings {

/// Returns the absolute path of the lock file, which is in `settingsFolder`. A "~" at the beginning of
/// `settingsFolder` means the home folder.
std::string agentLockFile(const std::string& settingsFolder);

/// Locks the file `agentLockFile(settingsFolder)` while this object exists, unless another process has locked
/// it. The system releases the lock when the process ends, even after a crash. Main thread.
class AgentLock {
public:
    /// Creates the settings folder and the lock file if they are missing, and tries to lock the file. Does
    /// not wait. If this object gets the lock, writes the id of this process into the file.
    explicit AgentLock(const std::string& settingsFolder);
    ~AgentLock();
    AgentLock(const AgentLock&) = delete;
    AgentLock& operator=(const AgentLock&) = delete;

    /// Returns whether another process held the lock when this object was constructed. Returns false if the
    /// lock file could not be opened: without a writable folder, the agent runs without a lock.
    bool isHeldByAnother() const { return heldByAnother; }

    /// Returns the id of the process that got the lock last, as the lock file contains it; 0 if the file
    /// cannot be opened or read, or contains no number.
    int holder() const;

private:
    const int file; // -1 if it could not be opened
    const bool heldByAnother;
};

} // namespace Kest::Settings
