// Checks of the agent, and of the pipe in which encoders report to it.
#include "lipc/SharedFile.h"
#include "tools/kest_inspect/Checks.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

namespace KestInspect {
namespace {

constexpr char kAgent[] = "agent";
constexpr char kPipe[] = "encoders' pipe";

std::string listed(const std::vector<Opener>& processes)
{
    std::string list;
    for (const auto& opener : processes)
        list +=
            (list.empty() ? "process " : ", ") + std::to_string(opener.process) + " (" + opener.program + ")";
    return list;
}

std::string killCommand(const std::vector<Opener>& processes)
{
    std::string command = "kill";
    for (const auto& opener : processes)
        command += " " + std::to_string(opener.process);
    return command;
}

// For systems that do not list the open files of processes. Running agents do not notice it: they keep a
// write end open.
bool hasReader(const std::string& path)
{
    const int end = open(path.c_str(), O_WRONLY | O_NONBLOCK | O_NOFOLLOW | O_CLOEXEC);
    if (end >= 0)
        close(end);
    return end >= 0 || errno != ENXIO;
}

bool isOurs(const struct stat& status) { return status.st_uid == geteuid(); }

Finding missingPipe(const Surroundings& here, const std::string& path)
{
    if (!here.agentRuns)
        return ok(kPipe, "none, as no agent runs");
    return wrong(kPipe, "the agent runs, but there is no " + path,
                 "look again in a second, then start the agent anew");
}

Finding noPipe(const Surroundings& here, const std::string& path, const struct stat& status)
{
    const auto what = path + " is " + kindOf(status) + " of " + userName(status.st_uid) + ", not a pipe";
    if (!here.agentRuns && isOurs(status) && !S_ISDIR(status.st_mode))
        return note(kPipe, what, "an agent that starts replaces it");
    return wrong(kPipe, what, "remove it: an agent that runs makes its pipe within a second");
}

Finding unreadPipe(const Surroundings& here, const std::string& path)
{
    if (here.agentRuns)
        return wrong(kPipe, "the agent runs, but nobody reads " + path, "start the agent anew");
    return note(kPipe, path + " was left behind, nobody reads it", "an agent that starts replaces it");
}

Finding foreignPipe(const Surroundings& here, const std::string& path, const struct stat& status)
{
    const auto whose = path + " is of " + userName(status.st_uid);
    const auto* remedy = "end the agent of that user, or remove the pipe";
    return here.agentRuns ? wrong(kPipe, whose, remedy) : note(kPipe, whose, remedy);
}

bool isAgent(const Surroundings& here, const Opener& reader)
{
    return std::ranges::find(here.agents, reader.process, &Opener::process) != here.agents.end();
}

// An error because each reader gets a part of what the encoders write.
Finding otherReaders(const Surroundings& here, const std::string& path, const std::vector<Opener>& readers)
{
    auto others = readers;
    std::erase_if(others, [&](const auto& reader) { return isAgent(here, reader); });
    if (others.size() == readers.size())
        return wrong(kPipe, path + " belongs to " + listed(readers) + ", not to this agent",
                     killCommand(others) + "; a second agent and this one replace each other's pipe");
    return wrong(kPipe, path + " is read by " + listed(readers),
                 "only the agent may: " + killCommand(others));
}

// Returns agents that wait to replace the pipe again: they still have their own pipe open, which this agent
// replaced.
std::vector<Opener> secondAgents(const Surroundings& here, const std::string& path)
{
    auto readers = openersOfRemoved(path);
    std::erase_if(readers, [&](const auto& reader) { return !reader.reads || isAgent(here, reader); });
    return readers;
}

} // namespace

Check checkAgent(const Surroundings& here)
{
    if (!here.agentRuns)
        return note(kAgent, "none of this user runs",
                    "start kest-settings, or kest-settings-terminal in a terminal");
    return ok(kAgent, here.agents.empty() ? "runs"
                                          : listed(here.agents) + "; to end it: " + killCommand(here.agents));
}

Check checkPipe(const Surroundings& here)
{
    const auto& path = here.paths.encodingProgressFifo;
    const auto status = statusOf(path);
    if (!status)
        return errno == ENOENT ? missingPipe(here, path)
                               : wrong(kPipe, path + ": " + std::strerror(errno), "let this user look there");
    if (!S_ISFIFO(status->st_mode))
        return noPipe(here, path, *status);
    if (!isOurs(*status))
        return foreignPipe(here, path, *status);
    auto readers = openersOf(path);
    std::erase_if(readers, [](const auto& opener) { return !opener.reads; });
    if (readers.empty() && !hasReader(path))
        return unreadPipe(here, path);
    if (!here.agents.empty() &&
        !std::ranges::all_of(readers, [&](const auto& reader) { return isAgent(here, reader); }))
        return otherReaders(here, path, readers);
    if (const auto second = secondAgents(here, path); !here.agents.empty() && !second.empty())
        return wrong(kPipe, listed(second) + " reads an earlier pipe of " + path,
                     "if it is a second agent, " + killCommand(second) + ": both replace the pipe");
    if ((status->st_mode & 0777U) != LIPC::kModeWorldWritable)
        return note(kPipe, path + " is not for all users to write", "start the agent anew");
    return ok(kPipe, path + (readers.empty() ? ", somebody reads it" : ", read by " + listed(readers)));
}

} // namespace KestInspect
