#include "app/OutputFolder.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <memory>
#include <string_view>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace Kest::App {
namespace {

using namespace std::string_view_literals;

constexpr std::int64_t kClockGranularity = 20'000'000; // nanoseconds

struct Component {
    std::string name;
    FileIdentity identity;
};
using Chain = std::vector<Component>; // from the root to a folder

OutputFolder refused(const std::string& reason) { return {.folder{}, .parent{}, .name{}, .refusal = reason}; }

std::string resolved(const std::string& path)
{
    const std::unique_ptr<char, void (*)(void*)> result(realpath(path.c_str(), nullptr), std::free);
    return result == nullptr ? std::string() : std::string(result.get());
}

// Returns the components of an absolute path without links, the root folder as "/".
std::vector<std::string> componentNames(const std::string& path)
{
    std::vector<std::string> names{"/"};
    for (std::size_t begin = 1; begin < path.size();) {
        const auto end = std::min(path.find('/', begin), path.size());
        names.push_back(path.substr(begin, end - begin));
        begin = end + 1;
    }
    return names;
}

// Opens each folder inside the previous one and records their identities. Returns an empty descriptor, with
// `errno` set, if one is not a folder or has become a link.
Settings::Descriptor openChain(const std::vector<std::string>& names, Chain& chain)
{
    Settings::Descriptor folder;
    for (const auto& name : names) {
        auto next = openFolder(folder ? folder.get() : AT_FDCWD, name);
        const auto facts = next ? examine(next.get()) : std::nullopt;
        if (!facts)
            return {};
        chain.push_back({name, facts->identity});
        folder = std::move(next);
    }
    return folder;
}

// Returns a folder's position in a chain, the innermost one if a mount shows it twice; -1 if not found.
int positionIn(const Chain& chain, const FileIdentity& identity)
{
    for (int i = static_cast<int>(chain.size()) - 1; i >= 0; --i)
        if (chain[static_cast<std::size_t>(i)].identity == identity)
            return i;
    return -1;
}

std::string refusalBy(const ProtectedFolder& row, const Chain& chain)
{
    const auto path = resolved(row.path);
    if (path.empty() && (errno == ENOENT || errno == ENOTDIR || errno == EACCES))
        return {};
    Chain protectedChain;
    if (path.empty() || !openChain(componentNames(path), protectedChain))
        return row.path + " cannot be examined";
    if (positionIn(protectedChain, chain.back().identity) >= 0)
        return "it is or contains " + row.path;
    const int position = positionIn(chain, protectedChain.back().identity);
    if (position < 0)
        return {};
    const int levels = static_cast<int>(chain.size()) - 1 - position;
    if (levels <= row.levels)
        return "it is in the protected folder " + row.path;
    const auto& child = chain[static_cast<std::size_t>(position) + 1].name;
    return row.hiddenTrees && child.starts_with('.') ? "it is in a hidden folder of " + row.path : "";
}

std::string refusalByMounts(const Settings::Descriptor& folder)
{
    const auto path = pathOf(folder);
    const auto points = mountPoints();
    if (path.empty() || !points)
        return "the mount points are unknown";
    for (const auto& point : *points)
        if (point == path || point.starts_with(path + "/"))
            return "it is or contains the mount point " + point;
    return {};
}

std::string refusalOf(const Settings::Descriptor& folder, const Chain& chain,
                      const std::vector<ProtectedFolder>& protectedOnes)
{
    for (const auto& row : protectedOnes)
        if (auto reason = refusalBy(row, chain); !reason.empty())
            return reason;
    return refusalByMounts(folder);
}

// Opens the folder with this path, which has no slash at its end, or refuses it.
OutputFolder openAt(const std::string& path, const std::vector<ProtectedFolder>& protectedOnes)
{
    const auto slash = path.rfind('/');
    OutputFolder opened{.folder{}, .parent{}, .name = path.substr(slash + 1), .refusal{}};
    if (opened.name == "." || opened.name == "..")
        return refused("its path ends in dots");
    const auto parent = resolved(path.substr(0, slash + 1));
    Chain chain;
    if (!parent.empty())
        opened.parent = openChain(componentNames(parent), chain);
    if (opened.parent)
        opened.folder = openFolder(opened.parent.get(), opened.name);
    const auto facts = opened.folder ? examine(opened.folder.get()) : std::nullopt;
    if (!facts)
        return errno == ENOENT ? OutputFolder() : refused(std::generic_category().message(errno));
    chain.push_back({opened.name, facts->identity});
    auto reason = refusalOf(opened.folder, chain, protectedOnes);
    return reason.empty() ? std::move(opened) : refused(reason);
}

} // namespace

OutputFolder openOutputFolder(const std::string& output, const std::vector<ProtectedFolder>& protectedOnes)
{
    const auto slash = output.rfind('/');
    if (slash == std::string::npos || slash == 0)
        return {};
    if (!output.starts_with('/'))
        return refused("its path is not absolute");
    if (output.find_first_of("'\0"sv) < slash)
        return refused("its path contains a quote");
    const auto end = output.find_last_not_of('/', slash);
    return end == std::string::npos ? refused("it is the root folder")
                                    : openAt(output.substr(0, end + 1), protectedOnes);
}

bool isOutputOf(const Settings::ProcessIdentity& process, const OutputFolder& opened,
                const std::string& output)
{
    const auto start = Settings::startedAt(process);
    if (!start || !opened.folder)
        return false;
    const auto earliest = *start - kClockGranularity;
    const auto user = geteuid();
    const auto name = output.substr(output.rfind('/') + 1);
    const auto file = name.empty() ? std::nullopt : examine(opened.folder.get(), name);
    if (file && S_ISREG(file->mode) && file->owner == user &&
        std::min(file->modified, file->changed) >= earliest)
        return true;
    const auto folder = examine(opened.folder.get());
    return folder && folder->owner == user && folder->created && *folder->created >= earliest;
}

} // namespace Kest::App
