// One agent for each user: two would fight over the pipe of the encoders.
#pragma once

#include <string>

namespace Kest::Settings {

/// The file that is locked while an agent runs, as an absolute path.
std::string agentLockFile(const std::string& settingsFolder);

/// Held for the life of the process that has it. The system releases it when the process ends, however it
/// ends.
class AgentLock {
public:
    /// Takes the lock beside the settings file, whose folder is made when missing. Never waits.
    explicit AgentLock(const std::string& settingsFolder);
    ~AgentLock();
    AgentLock(const AgentLock&) = delete;
    AgentLock& operator=(const AgentLock&) = delete;

    /// Another agent of this user runs. False when the lock file cannot be made at all: a folder that cannot
    /// be written must not keep the agent from running.
    bool isHeldByAnother() const { return heldByAnother; }

    /// The process that has the lock, as it wrote into the file; 0 when that is not known.
    int holder() const;

private:
    const int file; // -1 when it cannot be made
    const bool heldByAnother;
};

} // namespace Kest::Settings
