// Allows only one running agent for each settings folder. Two agents would compete for the encoders' pipe.
#pragma once

#include <string>

namespace Kest::Settings {

/// Returns the absolute path of the file that the running agent locks.
std::string agentLockFile(const std::string& settingsFolder);

/// Holds the lock on the file while this object exists, unless another process holds the lock already. The
/// system also releases the lock when the process ends or crashes. Main thread.
class AgentLock {
public:
    /// Creates the settings folder and the lock file if they are missing, and tries to lock the file. Does
    /// not wait. Writes this process's id into the file after locking it.
    explicit AgentLock(const std::string& settingsFolder);
    ~AgentLock();
    AgentLock(const AgentLock&) = delete;
    AgentLock& operator=(const AgentLock&) = delete;

    /// Returns whether another process held the lock when this object was constructed. Returns false if the
    /// lock file could not be opened, because the agent must also run without a writable folder.
    bool isHeldByAnother() const { return heldByAnother; }

    /// Returns the process id that the owner of the lock has written into the file; 0 if the file cannot be
    /// opened or read, or contains no number.
    int holder() const;

private:
    const int file; // -1 if it could not be opened
    const bool heldByAnother;
};

} // namespace Kest::Settings
