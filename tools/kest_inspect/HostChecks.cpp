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

constexpr char kStartHost[] = "start K3DHost, by \"Restart Host Service\" in the agent's menu for one";
constexpr char kRestartHost[] = "start K3DHost anew";

std::string process(pid_t number)
{
    return number == 0 ? std::string("an unseen process") : "process " + std::to_string(number);
}

std::string octal(unsigned mode)
{
    char digits[16];
    std::snprintf(digits, sizeof digits, "%03o", mode);
    return digits;
}

Finding whereNoHostIs()
{
    const auto creator = creatorOfSegment(LIPC::SessionBuffer::kSegmentBytes);
    if (!creator)
        return note("host", "none runs", kStartHost);
    return wrong("host",
                 process(*creator) + " keeps a session that nobody finds: its marker file was removed",
                 kRestartHost);
}

Finding leftBehind(const Surroundings& here, pid_t creator)
{
    std::string removal = "ipcrm";
    for (const auto& segment : {here.version, here.session})
        removal += segment ? " -m " + std::to_string(segment->id) : "";
    return wrong("host", process(creator) + " has ended and left its segments behind",
                 std::string(kRestartHost) + "; if they stay: " + removal);
}

Check checkSegment(const char* subject, const std::optional<Segment>& segment, std::size_t needed)
{
    if (!segment)
        return std::nullopt;
    if (segment->error != 0)
        return wrong(subject, std::strerror(segment->error),
                     "start K3DHost so that all users may use its segments");
    const auto bytes = std::to_string(segment->bytes) + " bytes";
    const auto access = "mode " + octal(segment->mode) + ", of " + userName(segment->owner);
    if (segment->bytes < needed)
        return wrong(subject, bytes + " of " + std::to_string(needed) + " that are needed",
                     "install a K3DHost of the agent's version, and start it anew");
    if (!segment->isWritable)
        return wrong(subject, access + ": not for this user to write",
                     "start K3DHost so that all users may use its segments");
    return ok(subject, bytes + ", " + access + ", made by " + process(segment->creator) + ", " +
                           std::to_string(segment->attached) + " attached");
}

Check checkMarker(const char* subject, const std::string& segment)
{
    const auto path = LIPC::markerPath(segment.c_str());
    const auto status = statusOf(path);
    if (!status && errno != ENOENT)
        return wrong(subject, path + ": " + std::strerror(errno), "make it possible to look into the folder");
    if (!status)
        return ok(subject, "none yet, " + path + " is made when it is needed");
    if (!S_ISREG(status->st_mode))
        return wrong(subject, path + " is " + kindOf(*status), "remove it, and " + std::string(kRestartHost));
    if (status->st_size > 0)
        return note(subject, path + " is not empty", "harmless; the agent empties it if it may");
    return ok(subject, path + ", of " + userName(status->st_uid));
}

} // namespace

Check checkHost(const Surroundings& here)
{
    const auto& segment = here.session ? here.session : here.version;
    if (!segment)
        return whereNoHostIs();
    if (hasEnded(segment->creator))
        return leftBehind(here, segment->creator);
    const auto word = here.reading.versionWord;
    if (word == LIPC::VersionBuffer::kNotPublished)
        return note("host", process(segment->creator) + ": its version word is not published yet",
                    "if it stays: " + std::string(kRestartHost));
    if (word && *word != LIPC::VersionBuffer::kAcceptedWordSize)
        return wrong("host", "runs in " + std::to_string(*word) + " bit; the agent leaves it alone",
                     "start K3DHost in 64 bit, then the agent anew");
    if (!here.session)
        return wrong("host", process(segment->creator) + " tells its version, but has no session",
                     kRestartHost);
    if (!word)
        return note("host",
                    process(segment->creator) + " does not tell its version; the agent takes it for 64 bit",
                    kRestartHost);
    return ok("host", process(segment->creator) + ", " + std::to_string(*word) + " bit");
}

Check checkVersionSegment(const Surroundings& here)
{
    return checkSegment("version segment", here.version, LIPC::VersionBuffer::kSegmentBytes);
}

Check checkSessionSegment(const Surroundings& here)
{
    return checkSegment("session segment", here.session, LIPC::SessionBuffer::kSegmentBytes);
}

Check checkAgentRecord(const Surroundings& here)
{
    if (!here.reading.session)
        return std::nullopt;
    const auto& agent = here.reading.session->agent;
    if (!agent)
        return wrong("agent's record", "there is none in the session: no choice arrives", kRestartHost);
    return ok("agent's record", "slot " + std::to_string(agent->slot) + ", among " +
                                    std::to_string(here.reading.session->clients.size()) + " clients");
}

Check checkVersionMarker(const Surroundings& here)
{
    return checkMarker("version marker", here.paths.versionSegment);
}
Check checkSessionMarker(const Surroundings& here)
{
    return checkMarker("session marker", here.paths.sessionSegment);
}

} // namespace KestInspect
