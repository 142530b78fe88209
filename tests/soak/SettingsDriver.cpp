// One start and one choice, to be killed, starved and lied to by those who trace it; and the look afterwards
// at what is left.
//
//   soak-settings prepare FOLDER BYTES [cut]
//       a settings file of about that size, with SoloMode 1; or cut short, beside its last good copy
//   soak-settings choose FOLDER [LIMIT]
//       SoloMode 2, where no file may grow beyond LIMIT bytes; the exit status is 0 when saved, 3 when not
//   soak-settings verdict FOLDER BYTES STATUS [cut]
//       says "old" or "new", or what is wrong, given the status of `choose`; then prepares the folder again
#include "backend/SettingsFile.h"
#include "backend/SystemPaths.h"
#include "tests/support/TemporaryFolder.h"

#include <csignal>
#include <cstdio>
#include <cstring>
#include <string>
#include <sys/resource.h>
#include <unistd.h>
#include <vector>

namespace {

namespace fs = std::filesystem;
using Kest::Settings::SaveResult;
using Kest::Settings::SettingsFile;
using Kest::Settings::SystemPaths;

constexpr char kKey[] = "SoloMode";
constexpr char kName[] = "Kest-Settings.xml";
constexpr char kBegin[] = "begin\n"; // whoever counts system calls counts from here
constexpr int kNotSaved = 3;

class Store {
public:
    explicit Store(const std::string& folder) : file(properties, pathsIn(folder)) {}

    juce::ApplicationProperties properties;
    SettingsFile file;

private:
    static SystemPaths pathsIn(const std::string& folder)
    {
        SystemPaths paths;
        paths.settingsFolder = folder;
        return paths;
    }
};

std::string text(std::size_t bytes, int soloMode)
{
    std::string rows = "  <VALUE name=\"SoloMode\" val=\"" + std::to_string(soloMode) + "\"/>\r\n";
    for (int i = 0; rows.size() < bytes; ++i)
        rows += "  <VALUE name=\"Key" + std::to_string(i) + "\" val=\"" + std::string(100, 'x') + "\"/>\r\n";
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\r\n\r\n<PROPERTIES>\r\n" + rows + "</PROPERTIES>\r\n";
}

void prepare(const fs::path& folder, std::size_t bytes, bool isCut)
{
    fs::create_directories(folder);
    for (const auto& entry : fs::directory_iterator(folder))
        fs::remove_all(entry);
    for (const auto* name : {kName, "Kest-Settings.xml.last"})
        Kest::Test::writeFile(folder / name, text(bytes, 1));
    if (isCut)
        fs::resize_file(folder / kName, 100);
}

int choose(const std::string& folder, const char* limit)
{
    if (limit != nullptr) {
        std::signal(SIGXFSZ, SIG_IGN);
        const rlimit most{std::stoul(limit), RLIM_INFINITY};
        setrlimit(RLIMIT_FSIZE, &most);
    }
    [[maybe_unused]] const auto written = write(STDOUT_FILENO, kBegin, std::strlen(kBegin));
    Store store(folder);
    return store.file.keep(kKey, 2) == SaveResult::saved && store.file.settle() ? 0 : kNotSaved;
}

std::string verdict(const fs::path& folder, std::size_t bytes, int status)
{
    Store store(folder);
    const int mode = store.file.values().getIntValue(kKey, -1);
    if (mode != 1 && mode != 2)
        return "lost " + std::to_string(mode);
    store.file.keep(kKey, mode); // as each start does: this sets a damaged file aside
    store.file.settle();
    const auto found = Kest::Test::readFile(folder / kName);
    for (const auto& entry : fs::directory_iterator(folder))
        if (const auto name = entry.path().filename().string(); name.find("_temp") != std::string::npos)
            return "stray " + name;
    if (found != text(bytes, mode))
        return "other text";
    if (status == 0 && mode != 2)
        return "told that it was saved";
    return mode == 1 ? "old" : "new";
}

} // namespace

int main(int count, char** words)
{
    const std::vector<std::string> given(words + 1, words + count);
    if (given.size() < 2)
        return 2;
    const fs::path folder = given[1];
    if (given[0] == "choose")
        return choose(folder, count > 3 ? words[3] : nullptr);
    const auto bytes = std::stoul(given.at(2));
    if (given[0] == "verdict")
        std::puts(verdict(folder, bytes, std::stoi(given.at(3))).c_str());
    prepare(folder, bytes, given.back() == "cut");
    return 0;
}
