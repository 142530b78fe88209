#include "backend/AgentLock.h"

#include <juce_core/juce_core.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

namespace Kest::Settings {
namespace {

int openLockFile(const std::string& settingsFolder)
{
    juce::File(juce::String::fromUTF8(settingsFolder.c_str())).createDirectory();
    return open(agentLockFile(settingsFolder).c_str(), O_RDWR | O_CREAT | O_NOFOLLOW | O_CLOEXEC, 0600);
}

bool isTaken(int file) { return file >= 0 && flock(file, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK; }

} // namespace

std::string agentLockFile(const std::string& settingsFolder)
{
    const juce::File folder(juce::String::fromUTF8(settingsFolder.c_str()));
    return folder.getChildFile("Kest-Settings.lock").getFullPathName().toStdString();
}

AgentLock::AgentLock(const std::string& settingsFolder)
    : file(openLockFile(settingsFolder)), heldByAnother(isTaken(file))
{
    if (file < 0 || heldByAnother)
        return;
    if (ftruncate(file, 0) == 0)
        dprintf(file, "%d\n", getpid());
}

int AgentLock::holder() const
{
    std::array<char, 16> text{};
    if (file < 0 || pread(file, text.data(), text.size() - 1, 0) <= 0)
        return 0;
    return static_cast<int>(std::strtol(text.data(), nullptr, 10));
}

// Unlocks explicitly: a child that still has the descriptor would keep the lock after a close.
AgentLock::~AgentLock()
{
    if (file < 0)
        return;
    if (!heldByAnother)
        flock(file, LOCK_UN);
    close(file);
}

} // namespace Kest::Settings
