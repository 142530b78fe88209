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

std::string listed(const std::vector<FileHolder>& processes)
{
    std::string list;
    for (const auto& holder : processes)
        list +=
            (list.empty() ? "process " : ", ") + std::to_string(holder.process) + " (" + holder.program + ")";
    return list;
}

std::string killCommand(const std::vector<FileHolder>& processes)
{
    std::string command = "kill";
    for (const auto& holder : processes)
        command += " " + std::to_string(holder.process);
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

Finding missingPipe(const CheckContext& context, const std::string& path)
{
    if (!context.agentRuns)
        return ok(kPipe, "not needed: no agent is running");
    return error(kPipe, "the agent is running, but there is no " + path,
                 "check again in a second, then restart the agent");
}

Finding noPipe(const CheckContext& context, const std::string& path, const struct stat& status)
{
    const auto what = path + " is " + kindOf(status) + " of " + userName(status.st_uid) + ", not a pipe";
    if (!context.agentRuns && isOurs(status) && !S_ISDIR(status.st_mode))
        return warning(kPipe, what, "nothing to do: the agent replaces it when it starts");
    return error(kPipe, what, "remove it; a running agent creates its pipe within a second");
}

Finding unreadPipe(const CheckContext& context, const std::string& path)
{
    if (context.agentRuns)
        return error(kPipe, "the agent is running, but no process reads " + path, "restart the agent");
    return warning(kPipe, path + " is left over from an earlier agent; no process reads it",
                   "nothing to do: the agent replaces it when it starts");
}

Finding foreignPipe(const CheckContext& context, const std::string& path, const struct stat& status)
{
    const auto whose = path + " belongs to " + userName(status.st_uid);
    const auto* hint = "end the agent of that user, or remove the pipe";
    return context.agentRuns ? error(kPipe, whose, hint) : warning(kPipe, whose, hint);
}

bool isAgent(const CheckContext& context, const FileHolder& reader)
{
    return std::ranges::find(context.agents, reader.process, &FileHolder::process) != context.agents.end();
}

// An error because each reader gets a part of what the encoders write.
Finding otherReaders(const CheckContext& context, const std::string& path,
                     const std::vector<FileHolder>& readers)
{
    auto others = readers;
    std::erase_if(others, [&](const auto& reader) { return isAgent(context, reader); });
    if (others.size() == readers.size())
        return error(kPipe, path + " belongs to " + listed(readers) + ", not to this agent",
                     killCommand(others) + "; a second agent and this one replace each other's pipe");
    return error(kPipe, path + " is read by " + listed(readers),
                 "only the agent may read it: " + killCommand(others));
}

// Returns agents that wait to replace the pipe again: they still have their own pipe open, which this agent
// replaced.
std::vector<FileHolder> secondAgents(const CheckContext& context, const std::string& path)
{
    auto readers = processesHoldingRemoved(path);
    std::erase_if(readers, [&](const auto& reader) { return !reader.reads || isAgent(context, reader); });
    return readers;
}

} // namespace

Check checkAgent(const CheckContext& context)
{
    if (!context.agentRuns)
        return warning(kAgent, "not running", "start kest-settings, or kest-settings-terminal in a terminal");
    return ok(kAgent, context.agents.empty()
                          ? "running"
                          : listed(context.agents) + "; to end it: " + killCommand(context.agents));
}

Check checkPipe(const CheckContext& context)
{
    const auto& path = context.paths.encodingProgressFifo;
    const auto status = statusOf(path);
    if (!status)
        return errno == ENOENT ? missingPipe(context, path)
                               : error(kPipe, path + ": " + std::strerror(errno),
                                       "make its folder accessible to this user");
    if (!S_ISFIFO(status->st_mode))
        return noPipe(context, path, *status);
    if (!isOurs(*status))
        return foreignPipe(context, path, *status);
    auto readers = processesHolding(path);
    std::erase_if(readers, [](const auto& holder) { return !holder.reads; });
    if (readers.empty() && !hasReader(path))
        return unreadPipe(context, path);
    if (!context.agents.empty() &&
        !std::ranges::all_of(readers, [&](const auto& reader) { return isAgent(context, reader); }))
        return otherReaders(context, path, readers);
    if (const auto second = secondAgents(context, path); !context.agents.empty() && !second.empty())
        return error(kPipe, listed(second) + " reads an earlier pipe of " + path,
                     "if it is a second agent, " + killCommand(second) + ": both replace the pipe");
    if ((status->st_mode & 0777U) != LIPC::kModeWorldWritable)
        return warning(kPipe, path + " is not writable by all users", "restart the agent");
    return ok(kPipe, path + (readers.empty() ? ", has a reader" : ", read by " + listed(readers)));
}

} // namespace KestInspect
