// Abort: whatever an encoder says, the commands are exactly the described ones or none.
#include "app/OutputFolder.h"
#include "backend/EncodingLine.h"
#include "fuzz/Input.h"

#include <unistd.h>

namespace {

using namespace Kest;
using Fuzz::require;

const char kHome[] = "/usr/share"; // a folder that every system has

/// Without empty parts and dots; ".." takes a part away.
std::vector<std::string> parts(const std::string& path)
{
    std::vector<std::string> found;
    for (std::size_t begin = 0; begin <= path.size();) {
        const auto end = std::min(path.find('/', begin), path.size());
        const auto part = path.substr(begin, end - begin);
        if (part == ".." && !found.empty())
            found.pop_back();
        else if (!part.empty() && part != "." && part != "..")
            found.push_back(part);
        begin = end + 1;
    }
    return found;
}

bool isOrContainsHome(const std::string& folder)
{
    const auto home = parts(kHome);
    const auto above = parts(folder);
    return above.size() <= home.size() && std::equal(above.begin(), above.end(), home.begin());
}

void checkKill(int pid)
{
    const auto command = App::killCommand(pid);
    const bool isDeadly = pid <= 1 || pid == getpid();
    require(command == (isDeadly ? "" : "kill -9 " + std::to_string(pid)), "one process is killed, or none");
}

void checkRemove(const std::string& path)
{
    const auto [folder, refusal] = App::folderToRemove(path, {kHome});
    require(folder.empty() != refusal.empty(), "a folder, or a reason");
    if (folder.empty())
        return;
    require(folder == path.substr(0, path.rfind('/')), "the folder of the output");
    require(folder.front() == '/' && folder.find_first_of(std::string("'\n\r\0", 4)) == std::string::npos,
            "one absolute word of the shell");
    require(!isOrContainsHome(folder), "nothing of the home folder but what is within it");
    require(App::removeCommand(folder) == "rm -Rf '" + folder + "'", "the described command");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    Fuzz::Input input(data, size);
    checkKill(input.number());
    auto line = "pid: 4711 , path: " + input.rest();
    line = line.substr(0, line.find_first_of(std::string("\n\r\0", 3)));
    const auto parsed = Settings::parseEncodingLine(line);
    if (const auto* output = std::get_if<Settings::PathLine>(&parsed->content))
        checkRemove(std::string(output->path));
    return 0;
}
