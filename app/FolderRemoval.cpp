#include "app/FolderRemoval.h"

#include <cerrno>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace Kest::App {
namespace {

constexpr int kMaxPasses = 10; // over a folder to which another process adds files

struct CloseFolder {
    void operator()(DIR* folder) const { closedir(folder); }
};
using Folder = std::unique_ptr<DIR, CloseFolder>;

// Enters a folder and returns by "..", so that only one folder is open besides the outermost and its parent.
class Removal {
public:
    Removal(const OutputFolder& opened, const std::atomic<bool>& stop) : top(opened), stopped(stop) {}

    std::string run()
    {
        if (!enter(top.folder.get(), ".", top.name))
            return failure;
        while (!levels.empty() && mayContinue()) {
            auto& folders = levels.back().folders;
            if (folders.empty()) {
                leave();
                continue;
            }
            const auto name = std::move(folders.back());
            folders.pop_back();
            // Deletes an empty folder even if it cannot be listed.
            if (unlinkat(dirfd(current.get()), name.c_str(), AT_REMOVEDIR) != 0 && errno != ENOENT)
                enter(dirfd(current.get()), name, name);
        }
        return failure;
    }

private:
    struct Level {
        std::string name; // in the parent folder
        FileFacts facts;
        int passes = 0;
        std::vector<std::string> folders{}; // subfolders still to be deleted
    };

    bool fail(const std::string& name, const std::string& reason)
    {
        failure = name + ": " + reason;
        return false;
    }
    bool failBySystem(const std::string& name) { return fail(name, std::generic_category().message(errno)); }

    bool mayContinue()
    {
        if (failure.empty() && stopped)
            fail(levels.back().name, "stopped before everything was deleted");
        return failure.empty();
    }

    bool enter(int parent, const std::string& path, const std::string& name)
    {
        Settings::Descriptor opened(
            openat(parent, path.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
        const auto facts = opened ? examine(opened.get()) : std::nullopt;
        if (!facts)
            return failBySystem(name);
        if (!levels.empty() && facts->mount != levels.front().facts.mount)
            return fail(name, "is a mount point");
        levels.push_back({name, *facts});
        return open(std::move(opened)) && deleteEntries();
    }

    bool open(Settings::Descriptor folder)
    {
        current.reset(fdopendir(folder.get()));
        if (current == nullptr)
            return failBySystem(levels.back().name);
        folder.release();
        return true;
    }

    // Deletes the entries of the current folder except folders, which it adds to the level.
    bool deleteEntries()
    {
        auto& level = levels.back();
        if (level.passes++ == kMaxPasses)
            return fail(level.name, "files are still being added to it");
        std::vector<std::string> names;
        if (!list(names))
            return false;
        const int folder = dirfd(current.get());
        for (auto& name : names) {
            if (!mayContinue())
                return false;
            const auto facts = examine(folder, name);
            if (facts && S_ISDIR(facts->mode))
                level.folders.push_back(std::move(name));
            else if (unlinkat(folder, name.c_str(), 0) != 0 && errno != ENOENT)
                return failBySystem(name);
        }
        return true;
    }

    bool list(std::vector<std::string>& names)
    {
        rewinddir(current.get());
        errno = 0;
        while (const dirent* entry = readdir(current.get())) {
            const std::string name = entry->d_name;
            if (name != "." && name != "..")
                names.push_back(name);
        }
        return errno == 0 || failBySystem(levels.back().name);
    }

    // Deletes the current folder and continues in its parent.
    void leave()
    {
        const bool isTop = levels.size() == 1;
        Settings::Descriptor parentFolder;
        if (!isTop && !openParent(parentFolder))
            return;
        const int parent = isTop ? top.parent.get() : parentFolder.get();
        const auto& name = levels.back().name;
        const auto named = examine(parent, name);
        if (!named && errno != ENOENT) {
            failBySystem(name);
        } else if (named && named->identity != levels.back().facts.identity) {
            fail(name, "was replaced meanwhile");
        } else if (named && unlinkat(parent, name.c_str(), AT_REMOVEDIR) != 0 && errno != ENOENT) {
            if (errno == ENOTEMPTY || errno == EEXIST)
                deleteEntries();
            else
                failBySystem(name);
        } else {
            levels.pop_back();
            if (!isTop)
                open(std::move(parentFolder));
        }
    }

    bool openParent(Settings::Descriptor& parentFolder)
    {
        const auto& name = levels.back().name;
        parentFolder = Settings::Descriptor(
            openat(dirfd(current.get()), "..", O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
        const auto facts = parentFolder ? examine(parentFolder.get()) : std::nullopt;
        if (!facts)
            return failBySystem(name);
        return facts->identity == levels[levels.size() - 2].facts.identity ||
               fail(name, "was moved meanwhile");
    }

    const OutputFolder& top;
    const std::atomic<bool>& stopped;
    std::string failure;
    std::vector<Level> levels; // from the outermost folder to the current one
    Folder current;
};

} // namespace

std::string removeFolder(const OutputFolder& opened, const std::atomic<bool>& stop)
{
    return Removal(opened, stop).run();
}

} // namespace Kest::App
