// Allows one agent for each user: two would compete for the encoders' pipe.
#pragma once

#include <string>

namespace Kest::Settings {

/// Returns the absolute path of the file that the running agent locks.
std::string agentLockFile(const std::string& settingsFolder);

/// Holds the lock until the process ends. The system then releases it, also after a crash.
class AgentLock {
public:
    /// Tries to take the lock, in the folder of the settings file, and creates that folder. Does not wait.
    explicit AgentLock(const std::string& settingsFolder);
    ~AgentLock();
    AgentLock(const AgentLock&) = delete;
    AgentLock& operator=(const AgentLock&) = delete;

    /// Returns whether another agent of this user is running. False if the lock file cannot be created: the
    /// agent runs without a writable folder too.
    bool isHeldByAnother() const { return heldByAnother; }

    /// Returns the process id that the lock's holder wrote into the file; 0 if unknown.
    int holder() const;

private:
    const int file; // -1 if it cannot be created
    const bool heldByAnother;
};

} // namespace Kest::Settings
