// Abort: whatever path an encoder reports, the folder is refused, or it is the one of the path and is not
// protected.
#include "app/OutputFolder.h"
#include "backend/EncodingLine.h"
#include "fuzz/Input.h"

#include <algorithm>
#include <filesystem>

namespace {

using namespace Kest;
using Fuzz::require;
namespace fs = std::filesystem;

// Folders that every system has; nothing is deleted here.
const fs::path kHome = "/usr/share";
const fs::path kTree = "/usr/lib";

bool isWithin(const fs::path& folder, const fs::path& tree)
{
    return std::ranges::mismatch(tree, folder).in1 == tree.end();
}

// By texts, in another way than the decision itself.
void checkFolder(const fs::path& folder, const std::string& output)
{
    require(folder == fs::canonical(output.substr(0, output.rfind('/'))));
    require(folder.has_relative_path());
    require(!isWithin(kHome, folder) && folder.parent_path() != kHome); // neither above it nor directly in it
    require(!isWithin(folder, kTree) && !isWithin(kTree, folder));
    for (auto part = folder; isWithin(part, kHome) && part != kHome; part = part.parent_path())
        require(part.parent_path() != kHome || !part.filename().string().starts_with('.'));
    const auto mounts = App::mountPoints().value();
    require(std::ranges::none_of(mounts, [&](const auto& mount) { return isWithin(mount, folder); }));
    require(output.find('\'') >= output.rfind('/')); // no quote in the folder's path
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    Fuzz::Input input(data, size);
    auto line = "pid: 4711 , path: " + input.rest();
    line = line.substr(0, line.find_first_of(std::string("\n\r\0", 3)));
    const auto parsed = Settings::parseEncodingLine(line);
    if (const auto* path = std::get_if<Settings::PathLine>(&parsed->content)) {
        const std::string output(path->path);
        const auto opened = App::openOutputFolder(
            output, {{kHome, 1, true}, {kTree, App::ProtectedFolder::kWholeTree}, {"/none", 1}});
        require(!opened.folder || opened.refusal.empty());
        if (opened.folder)
            checkFolder(App::pathOf(opened.folder), output);
    }
    return 0;
}
