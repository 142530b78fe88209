#include "backend/SettingsFile.h"

#include "backend/FileIo.h"
#include "backend/SettingsFileCheck.h"
#include "backend/SettingsLocation.h"
#include "backend/SystemPaths.h"
#include "log/Log.h"
#include "tables/Settings.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <unistd.h>
#include <utility>

namespace Kest::Settings {
namespace {

bool canBeSaved(const juce::String& value)
{
    juce::StringPairArray one(false);
    one.set("value", value);
    if (!canBeWritten(value))
        return false;
    const auto kept = readSettingsText(settingsText(one));
    return kept && kept->getValue("value") == value;
}

FileContent readSettings(const std::string& path) { return readFile(path, kMaxSettingsBytes + 1); }

std::optional<juce::PropertySet> valuesIn(const FileContent& file)
{
    return file.error == 0 ? readSettingsText(file.text) : std::nullopt;
}

bool isMissing(const FileContent& file) { return file.error == ENOENT || file.error == ENOTDIR; }

void report(const std::string& path, const char* what, const char* why)
{
    Lct::LogAnswer(Lct::eLogError, "settings", "%.300s %s: %s", path.c_str(), what, why);
}

// The line begins with the important part, as narrow screens cut it.
void reportNotSaved(const char* what, const std::string& why, const std::string& titles, const char* effect,
                    const std::string& path)
{
    Lct::LogAnswer(Lct::eLogError, "settings", "%s (%s): %s; %s; %.300s", what, why.c_str(), titles.c_str(),
                   effect, path.c_str());
}

std::string titleOf(const juce::String& key)
{
    const auto* known = std::ranges::find_if(kSettings, [&](const auto& one) { return key == one.key; });
    return known == std::end(kSettings) ? key.toStdString() : known->title;
}

} // namespace

SettingsFile::SettingsFile(juce::ApplicationProperties& juceStore, const SystemPaths& paths)
    : store(juceStore), path(settingsFileBehindLinks(paths.settingsFile())), backup(path + ".last"),
      damaged(path + ".bad")
{
    const juce::File folder(juce::String::fromUTF8(paths.absoluteSettingsFolder().c_str()));
    if (!folder.exists())
        folder.createDirectory();
    removeStaleTempFiles(path);
    unlink(temporaryOf(path).c_str());
    unlink(temporaryOf(backup).c_str());
    store.setStorageParameters(storeOptions(path));
    uncommitted.setFallbackPropertySet(&inFile);
}

SettingsFile::~SettingsFile()
{
    holdLogLine();
    commit();
    if (uncommitted.getAllProperties().size() == 0 || (saveUncommitted() && commit()))
        return;
    isHolding = false;
    reportUnsaved("still not saved", "lost, as the agent ends");
}

const juce::PropertySet& SettingsFile::values()
{
    if (!isLoaded && !pendingSave) // until `commit`, `uncommitted` contains the saved values
        load(Repair::no);
    return uncommitted;
}

SaveResult SettingsFile::save(const char* key, const juce::var& value)
{
    commit();
    if (value.isString() && !canBeSaved(value.toString())) {
        reportNotSaved("not saved", "the file cannot contain this text", titleOf(key),
                       "the previous choice stays in effect", path);
        return SaveResult::refused;
    }
    uncommitted.removeValue(key); // so that it is added last
    uncommitted.setValue(key, value);
    if (saveUncommitted())
        return SaveResult::saved;
    reportUnsaved("not saved", "in effect until the agent ends");
    return SaveResult::failed;
}

bool SettingsFile::commit()
{
    auto save = std::exchange(pendingSave, std::nullopt);
    if (!save)
        return true;
    if (!flushWithFolder(path)) {
        reason = std::strerror(errno);
        rollBack(save->before);
        reportUnsaved("not saved", "in effect until the agent ends");
        return false;
    }
    text = std::move(save->text);
    inFile = save->values;
    isBackupCurrent = saveBackup();
    uncommitted.clear();
    return true;
}

void SettingsFile::logHeldLine()
{
    isHolding = false;
    if (std::exchange(isHeld, false) && uncommitted.getAllProperties().size() > 0)
        reportUnsaved("not saved", "in effect until the agent ends");
}

void SettingsFile::reportUnsaved(const char* what, const char* effect)
{
    isHeld = isHolding;
    if (isHolding)
        return;
    std::string titles;
    const auto& keys = uncommitted.getAllProperties().getAllKeys();
    for (int i = keys.size(); i-- > 0;)
        titles += (titles.empty() ? "" : ", ") + titleOf(keys[i]);
    reportNotSaved(what, reason, titles, effect, path);
}

SettingsFile::Load SettingsFile::load(Repair repair)
{
    auto file = readSettings(path);
    if (file.error == 0 && isBackupCurrent && file.text == text) { // unchanged since the last check
        isLoaded = true;
        return Load::loaded;
    }
    auto values = valuesIn(file);
    if (file.error == 0 && !values && repair == Repair::yes && quarantine()) {
        file = readSettings(path);
        values = valuesIn(file);
    }
    isLoaded = values || isMissing(file);
    if (!isLoaded) {
        if (file.error != 0) {
            reason = std::strerror(file.error);
            if (!std::exchange(isReported, true))
                report(path, "cannot be used and is not changed", reason.c_str());
        }
        useBackup();
        return Load::failed;
    }
    isReported = false;
    text = isMissing(file) ? std::string() : std::move(file.text);
    inFile = values.value_or(juce::PropertySet());
    isBackupCurrent = repair == Repair::yes && !isMissing(file) && saveBackup();
    return isMissing(file) ? Load::missing : Load::loaded;
}

void SettingsFile::useBackup()
{
    isBackupCurrent = false; // `text` is not the text in use
    if (const auto values = valuesIn(readSettings(backup)))
        inFile = *values;
}

// The path always has a file, so that a crash in between is not taken for a first start.
bool SettingsFile::quarantine()
{
    const bool isBackupValid = valuesIn(readSettings(backup)).has_value();
    unlink(damaged.c_str());
    const bool isAside = (isBackupValid && link(path.c_str(), damaged.c_str()) == 0) ||
                         std::rename(path.c_str(), damaged.c_str()) == 0;
    if (!isAside) {
        reason = std::strerror(errno);
        if (!std::exchange(isReported, true))
            report(path, "is damaged and cannot be renamed to .bad", reason.c_str());
        return false;
    }
    const bool isBack = isBackupValid && std::rename(backup.c_str(), path.c_str()) == 0;
    report(path, "is damaged", isBack ? "renamed to .bad; the backup is used" : "renamed to .bad");
    return true;
}

bool SettingsFile::saveUncommitted()
{
    isLoaded = false; // the next query reads the file again, whether this succeeds or not
    const auto before = load(Repair::yes);
    isLoaded = false;
    if (before == Load::failed ||
        (before == Load::loaded && !isBackupCurrent)) // nothing to restore after a failure
        return false;
    if (isInFile(uncommitted)) { // usual at the start
        uncommitted.clear();
        return true;
    }
    if (saveValues(before))
        return true;
    rollBack(before);
    return false;
}

bool SettingsFile::isInFile(juce::PropertySet& values)
{
    const auto& wanted = values.getAllProperties();
    const auto& there = inFile.getAllProperties();
    return std::ranges::all_of(wanted.getAllKeys(), [&](const auto& key) {
        return there.containsKey(key) && there[key] == wanted[key];
    });
}

void SettingsFile::rollBack(Load before)
{
    if (!restoreBackup(before))
        report(path, "is not restored after a failed save", "the next start restores it");
}

bool SettingsFile::saveValues(Load before)
{
    auto values = inFile.getAllProperties();
    values.addArray(uncommitted.getAllProperties());
    if (!isWritable(values))
        return false;
    const auto newText = settingsText(values);
    const auto expected = readSettingsText(newText);
    if (!expected) {
        reason = "over 64 KB";
        return false;
    }
    PendingSave wanted{before, newText, *expected};
    saveThroughStore();
    // The store does not report why it fails; saving without it reports the reason, or succeeds.
    if (!isSaved(wanted) && !(saveText(newText) && isSaved(wanted)))
        return false;
    pendingSave = std::move(wanted);
    return true;
}

bool SettingsFile::isWritable(const juce::StringPairArray& wanted)
{
    const auto& keys = wanted.getAllKeys();
    const auto* bad = std::ranges::find_if(keys, [&](const auto& key) { return !canBeWritten(wanted[key]); });
    if (bad == keys.end())
        return true;
    reason = "the store cannot write the value of " + titleOf(*bad);
    return false;
}

void SettingsFile::saveThroughStore()
{
    // `store` would read the file twice, the second time as the settings of all users.
    juce::PropertiesFile file(store.getStorageParameters());
    // It would save a file that it could not read as empty.
    if (file.getAllProperties() == inFile.getAllProperties())
        file.addAllPropertiesFrom(uncommitted);
}

bool SettingsFile::saveText(const std::string& newText)
{
    std::error_code failure;
    std::filesystem::create_directories(std::filesystem::path(path).parent_path(), failure);
    if (!failure && replaceFile(path, newText))
        return true;
    reason = failure ? failure.message() : std::strerror(errno);
    return false;
}

bool SettingsFile::isSaved(PendingSave& wanted)
{
    auto file = readSettings(path);
    if (file.error == 0 && file.text == wanted.text)
        return true;
    auto values = valuesIn(file);
    if (!values || values->getAllProperties() != wanted.values.getAllProperties()) {
        reason = file.error != 0 ? std::strerror(file.error) : "the file does not contain what was written";
        return false;
    }
    wanted.text = std::move(file.text);
    return true;
}

bool SettingsFile::saveBackup()
{
    if (readSettings(backup).text == text || replaceFile(backup, text))
        return true;
    reason = std::strerror(errno);
    return false;
}

// Restores by renaming, which requires no free disk space.
bool SettingsFile::restoreBackup(Load before)
{
    const auto now = readSettings(path);
    if (before == Load::missing)
        return isMissing(now) || unlink(path.c_str()) == 0;
    if (now.error == 0 && now.text == text)
        return true;
    isBackupCurrent = false; // renaming removes the backup
    return std::rename(backup.c_str(), path.c_str()) == 0 && flushWithFolder(path);
}

} // namespace Kest::Settings
