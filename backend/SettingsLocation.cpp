#include "backend/SettingsLocation.h"

#include <filesystem>

namespace Kest::Settings {
namespace {

namespace fs = std::filesystem;

juce::String text(const fs::path& path) { return juce::String::fromUTF8(path.c_str()); }

} // namespace

std::string settingsFileBehindLinks(const std::string& path)
{
    constexpr int kMaxLinks = 40; // the limit of Linux
    std::error_code failure;
    fs::path file = path;
    for (int i = 0; i < kMaxLinks && fs::is_symlink(file, failure); ++i)
        file = (file.parent_path() / fs::read_symlink(file, failure)).lexically_normal();
    return fs::is_symlink(file, failure) || file.extension().empty() ? path : file.string();
}

juce::PropertiesFile::Options storeOptions(const std::string& path)
{
    const fs::path file = path;
    juce::PropertiesFile::Options options;
    options.applicationName = text(file.stem());
    options.filenameSuffix = text(file.extension()).substring(1);
    options.folderName = text(file.parent_path()); // absolute, so that no system changes it
    options.osxLibrarySubFolder = "Application Support";
    options.commonToAllUsers = false;
    options.ignoreCaseOfKeyNames = false;
    options.doNotSave = false;
    options.millisecondsBeforeSaving = 0;
    options.storageFormat = juce::PropertiesFile::storeAsXML;
    options.processLock = nullptr;
    return options;
}

void removeStaleTempFiles(const std::string& path)
{
    const fs::path file = path;
    const auto beginning = file.stem().string() + "_temp"; // the store appends a random number
    std::error_code failure;
    const fs::directory_iterator end;
    for (fs::directory_iterator entry(file.parent_path(), failure); entry != end; entry.increment(failure)) {
        const auto& name = entry->path().filename();
        if (name.string().starts_with(beginning) && name.extension() == file.extension())
            fs::remove(entry->path(), failure);
    }
}

} // namespace Kest::Settings
