// Checks of the host: whether it runs, and whether the agent can use its segments.
#include "lipc/SessionBuffer.h"
#include "lipc/ShmKey.h"
#include "lipc/VersionBuffer.h"
#include "tools/kest_inspect/Checks.h"

#include <cerrno>
#include <cstdio>
#include <cstring>

namespace KestInspect {
namespace {

constexpr char kStartHost[] = "start K3DHost, or choose Restart Host Service in the agent's menu";
constexpr char kRestartHost[] = "restart K3DHost";

std::string process(pid_t number)
{
    return number == 0 ? std::string("a process in another namespace") : "process " + std::to_string(number);
}

std::string octal(unsigned mode)
{
    char digits[16];
    std::snprintf(digits, sizeof digits, "%03o", mode);
    return digits;
}

Finding noHost()
{
    const auto creator = creatorOfSegment(LIPC::SessionBuffer::kSegmentBytes);
    if (!creator)
        return warning("host", "not running", kStartHost);
    return error("host", process(*creator) + " has a session segment, but its key file is missing",
                 kRestartHost);
}

Finding staleSegments(const CheckContext& context, pid_t creator)
{
    std::string removal = "ipcrm";
    for (const auto& segment : {context.version, context.session})
        removal += segment ? " -m " + std::to_string(segment->id) : "";
    return error("host", process(creator) + " has ended, but its segments remain",
                 std::string(kRestartHost) + "; if this error remains, delete the segments: " + removal);
}

Check checkSegment(const char* subject, const std::optional<Segment>& segment, std::size_t needed)
{
    if (!segment)
        return std::nullopt;
    if (segment->error != 0)
        return error(subject, std::strerror(segment->error),
                     "restart K3DHost so that all users may read and write its segments");
    const auto bytes = std::to_string(segment->bytes) + " bytes";
    const auto access = "mode " + octal(segment->mode) + ", owner " + userName(segment->owner);
    if (segment->bytes < needed)
        return error(subject, bytes + " of " + std::to_string(needed) + " required",
                     "install the K3DHost version that matches the agent, and restart it");
    if (!segment->isWritable)
        return error(subject, access + ": not writable by this user",
                     "restart K3DHost so that all users may read and write its segments");
    return ok(subject, bytes + ", " + access + ", created by " + process(segment->creator) + ", " +
                           "attachments: " + std::to_string(segment->attached));
}

Check checkKeyFile(const char* subject, const std::string& segment)
{
    const auto path = LIPC::keyFilePath(segment.c_str());
    const auto status = statusOf(path);
    if (!status && errno != ENOENT)
        return error(subject, path + ": " + std::strerror(errno), "make the folder accessible to this user");
    if (!status)
        return ok(subject, "none yet; the host or the agent creates " + path);
    if (!S_ISREG(status->st_mode))
        return error(subject, path + " is " + kindOf(*status), "remove it, and " + std::string(kRestartHost));
    if (status->st_size > 0)
        return warning(subject, path + " is not empty",
                       "harmless; the agent empties it if it is permitted to");
    return ok(subject, path + ", owner " + userName(status->st_uid));
}

} // namespace

Check checkHost(const CheckContext& context)
{
    const auto& segment = context.session ? context.session : context.version;
    if (!segment)
        return noHost();
    if (hasEnded(segment->creator))
        return staleSegments(context, segment->creator);
    const auto word = context.snapshot.versionWord;
    if (word == LIPC::VersionBuffer::kNotPublished)
        return warning("host", process(segment->creator) + ": its version word is not published yet",
                       "if that persists: " + std::string(kRestartHost));
    if (word && *word != LIPC::VersionBuffer::kAcceptedWordSize)
        return error("host",
                     "runs in " + std::to_string(*word) + " bit, which an agent refuses when it starts",
                     "start K3DHost in 64 bit, then restart the agent");
    if (!context.session)
        return error("host", process(segment->creator) + " has published its version, but has no session",
                     kRestartHost);
    if (!word)
        return warning("host",
                       process(segment->creator) + " has not published its version; the agent assumes 64 bit",
                       kRestartHost);
    return ok("host", process(segment->creator) + ", " + std::to_string(*word) + " bit");
}

Check checkVersionSegment(const CheckContext& context)
{
    return checkSegment("version segment", context.version, LIPC::VersionBuffer::kSegmentBytes);
}

Check checkSessionSegment(const CheckContext& context)
{
    return checkSegment("session segment", context.session, LIPC::SessionBuffer::kSegmentBytes);
}

Check checkAgentRecord(const CheckContext& context)
{
    if (!context.snapshot.session)
        return std::nullopt;
    const auto& agent = context.snapshot.session->agent;
    if (!agent)
        return error("agent's record", "missing in the session: the host gets no settings", kRestartHost);
    return ok("agent's record", "slot " + std::to_string(agent->slot) +
                                    " of the session; clients in the session: " +
                                    std::to_string(context.snapshot.session->clients.size()));
}

Check checkVersionKeyFile(const CheckContext& context)
{
    return checkKeyFile("version key file", context.paths.versionSegment);
}
Check checkSessionKeyFile(const CheckContext& context)
{
    return checkKeyFile("session key file", context.paths.sessionSegment);
}

} // namespace KestInspect
