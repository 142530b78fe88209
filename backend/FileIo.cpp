#include "backend/FileIo.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Kest::Settings {
namespace {

/// Repeats a call that a signal interrupted, a limited number of times: a file system that always interrupts
/// must not hang the agent.
template <typename Call>
auto retryOnEintr(const Call& call)
{
    constexpr int kPatience = 100;
    auto result = call();
    for (int i = 1; result < 0 && errno == EINTR && i < kPatience; ++i)
        result = call();
    return result;
}

class OpenFile {
public:
    OpenFile(const std::string& path, int flags)
        : descriptor(retryOnEintr([&] { return open(path.c_str(), flags | O_CLOEXEC, 0644); }))
    {}
    ~OpenFile()
    {
        if (descriptor >= 0)
            close(descriptor);
    }
    OpenFile(const OpenFile&) = delete;
    OpenFile& operator=(const OpenFile&) = delete;

    const int descriptor;
};

bool flush(const std::string& path)
{
    const OpenFile file(path, O_RDONLY);
    return file.descriptor >= 0 && retryOnEintr([&] { return flushToDisk(file.descriptor) ? 0 : -1; }) == 0;
}

bool writeAll(int file, const std::string& text)
{
    for (std::size_t done = 0; done < text.size();) {
        const auto count = retryOnEintr([&] { return write(file, text.data() + done, text.size() - done); });
        if (count <= 0)
            return false;
        done += static_cast<std::size_t>(count);
    }
    return flushToDisk(file);
}

std::string folderOf(const std::string& path) { return path.substr(0, path.rfind('/') + 1); }

bool writeTemporary(const std::string& path, const std::string& text)
{
    const OpenFile file(path, O_WRONLY | O_CREAT | O_TRUNC | O_NOFOLLOW);
    return file.descriptor >= 0 && writeAll(file.descriptor, text);
}

} // namespace

FileContent readFile(const std::string& path, std::size_t limit)
{
    const OpenFile file(path, O_RDONLY | O_NONBLOCK); // must not block on a pipe
    struct stat status {};
    if (file.descriptor < 0 || fstat(file.descriptor, &status) != 0)
        return {errno, {}};
    if (!S_ISREG(status.st_mode))
        return {S_ISDIR(status.st_mode) ? EISDIR : EINVAL, {}};
    FileContent whole;
    // One byte more than the file's size, so that a read finds the end; a file that grows is read further.
    const auto room = std::min(limit, static_cast<std::size_t>(status.st_size) + 1);
    whole.text.resize(room);
    for (std::size_t done = 0;;) {
        const auto size = whole.text.size();
        const auto count =
            retryOnEintr([&] { return read(file.descriptor, whole.text.data() + done, size - done); });
        if (count < 0)
            return {errno, {}};
        done += static_cast<std::size_t>(count);
        if (count == 0 || done == limit) {
            whole.text.resize(done);
            return whole;
        }
        if (done == size)
            whole.text.resize(std::min(limit, 2 * size));
    }
}

std::string temporaryOf(const std::string& path) { return path + "_temp"; }

bool replaceFile(const std::string& path, const std::string& text)
{
    const auto temporary = temporaryOf(path);
    if (writeTemporary(temporary, text) && std::rename(temporary.c_str(), path.c_str()) == 0)
        return flush(folderOf(path));
    const int failure = errno;
    unlink(temporary.c_str());
    errno = failure;
    return false;
}

bool flushWithFolder(const std::string& path) { return flush(path) && flush(folderOf(path)); }

} // namespace Kest::Settings
