#include "backend/SettingsFile.h"

#include "backend/FileText.h"
#include "backend/SettingsFileCheck.h"
#include "backend/SettingsPlace.h"
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

bool canBeKept(const juce::String& value)
{
    juce::StringPairArray one(false);
    one.set("value", value);
    if (!canBeWritten(value))
        return false;
    const auto kept = readSettingsText(settingsText(one));
    return kept && kept->getValue("value") == value;
}

FileText readSettings(const std::string& path) { return readFile(path, kLongestSettings + 1); }

std::optional<juce::PropertySet> valuesIn(const FileText& file)
{
    return file.error == 0 ? readSettingsText(file.text) : std::nullopt;
}

bool isMissing(const FileText& file) { return file.error == ENOENT || file.error == ENOTDIR; }

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
    : store(juceStore), path(settingsFileBehindLinks(paths.settingsFile())), lastGood(path + ".last"),
      damaged(path + ".bad")
{
    const juce::File folder(juce::String::fromUTF8(paths.absoluteSettingsFolder().c_str()));
    if (!folder.exists())
        folder.createDirectory();
    removeStrays(path);
    unlink(temporaryOf(path).c_str());
    unlink(temporaryOf(lastGood).c_str());
    store.setStorageParameters(storeOptions(path));
    unsaved.setFallbackPropertySet(&inFile);
}

SettingsFile::~SettingsFile()
{
    holdReports();
    settle();
    if (unsaved.getAllProperties().size() == 0 || (save() && settle()))
        return;
    isHolding = false;
    reportUnsaved("still not saved", "lost, as the agent ends");
}

const juce::PropertySet& SettingsFile::values()
{
    if (!isLoaded && !unsettled) // until `settle`, `unsaved` contains the saved values
        load(Repair::no);
    return unsaved;
}

SaveResult SettingsFile::keep(const char* key, const juce::var& value)
{
    settle();
    if (value.isString() && !canBeKept(value.toString())) {
        reportNotSaved("not saved", "the file cannot contain this text", titleOf(key),
                       "the choice before stays in effect", path);
        return SaveResult::refused;
    }
    unsaved.removeValue(key); // so that it is added last
    unsaved.setValue(key, value);
    if (save())
        return SaveResult::saved;
    reportUnsaved("not saved", "in effect until the agent ends");
    return SaveResult::failed;
}

bool SettingsFile::settle()
{
    auto save = std::exchange(unsettled, std::nullopt);
    if (!save)
        return true;
    if (!flushWithFolder(path)) {
        reason = std::strerror(errno);
        giveUp(save->before);
        reportUnsaved("not saved", "in effect until the agent ends");
        return false;
    }
    text = std::move(save->text);
    inFile = save->values;
    hasCopy = keepLastGood();
    unsaved.clear();
    return true;
}

void SettingsFile::reportHeld()
{
    isHolding = false;
    if (std::exchange(isHeld, false) && unsaved.getAllProperties().size() > 0)
        reportUnsaved("not saved", "in effect until the agent ends");
}

void SettingsFile::reportUnsaved(const char* what, const char* effect)
{
    isHeld = isHolding;
    if (isHolding)
        return;
    std::string titles;
    const auto& keys = unsaved.getAllProperties().getAllKeys();
    for (int i = keys.size(); i-- > 0;)
        titles += (titles.empty() ? "" : ", ") + titleOf(keys[i]);
    reportNotSaved(what, reason, titles, effect, path);
}

SettingsFile::Load SettingsFile::load(Repair repair)
{
    auto file = readSettings(path);
    if (file.error == 0 && hasCopy && file.text == text) { // unchanged since the last check
        isLoaded = true;
        return Load::whole;
    }
    auto values = valuesIn(file);
    if (file.error == 0 && !values && repair == Repair::yes && setAside()) {
        file = readSettings(path);
        values = valuesIn(file);
    }
    isLoaded = values || isMissing(file);
    if (!isLoaded) {
        if (file.error != 0) {
            reason = std::strerror(file.error);
            if (!std::exchange(isReported, true))
                report(path, "cannot be used, and is left alone", reason.c_str());
        }
        useLastGood();
        return Load::failed;
    }
    isReported = false;
    text = isMissing(file) ? std::string() : std::move(file.text);
    inFile = values.value_or(juce::PropertySet());
    hasCopy = repair == Repair::yes && !isMissing(file) && keepLastGood();
    return isMissing(file) ? Load::missing : Load::whole;
}

void SettingsFile::useLastGood()
{
    hasCopy = false; // `text` is not the text in use
    if (const auto values = valuesIn(readSettings(lastGood)))
        inFile = *values;
}

// The path always has a file, so that a crash in between is not taken for a first start.
bool SettingsFile::setAside()
{
    const bool isCopyWell = valuesIn(readSettings(lastGood)).has_value();
    unlink(damaged.c_str());
    const bool isAside = (isCopyWell && link(path.c_str(), damaged.c_str()) == 0) ||
                         std::rename(path.c_str(), damaged.c_str()) == 0;
    if (!isAside) {
        reason = std::strerror(errno);
        if (!std::exchange(isReported, true))
            report(path, "is damaged and cannot be set aside as .bad", reason.c_str());
        return false;
    }
    const bool isBack = isCopyWell && std::rename(lastGood.c_str(), path.c_str()) == 0;
    report(path, "is damaged",
           isBack ? "set aside as .bad; its last good copy is used" : "set aside as .bad");
    return true;
}

bool SettingsFile::save()
{
    isLoaded = false; // the next query reads the file again, whether this succeeds or not
    const auto before = load(Repair::yes);
    isLoaded = false;
    if (before == Load::failed || (before == Load::whole && !hasCopy)) // nothing to restore after a failure
        return false;
    if (isInFile(unsaved)) { // usual at the start
        unsaved.clear();
        return true;
    }
    if (saveValues(before))
        return true;
    giveUp(before);
    return false;
}

bool SettingsFile::isInFile(juce::PropertySet& choices)
{
    const auto& wanted = choices.getAllProperties();
    const auto& there = inFile.getAllProperties();
    return std::ranges::all_of(wanted.getAllKeys(), [&](const auto& key) {
        return there.containsKey(key) && there[key] == wanted[key];
    });
}

void SettingsFile::giveUp(Load before)
{
    if (!putBack(before))
        report(path, "is not restored after a failed save", "the next start restores it");
}

bool SettingsFile::saveValues(Load before)
{
    auto values = inFile.getAllProperties();
    values.addArray(unsaved.getAllProperties());
    if (!isWritable(values))
        return false;
    const auto newText = settingsText(values);
    const auto expected = readSettingsText(newText);
    if (!expected) {
        reason = "over 64 KB";
        return false;
    }
    Save wanted{before, newText, *expected};
    saveThroughStore();
    // The store does not report why it fails; saving without it reports the reason, or succeeds.
    if (!isSaved(wanted) && !(saveText(newText) && isSaved(wanted)))
        return false;
    unsettled = std::move(wanted);
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
    auto* file = store.getUserSettings();
    // The store would save a file that it could not read as empty.
    if (file->getAllProperties() == inFile.getAllProperties())
        file->addAllPropertiesFrom(unsaved);
    store.closeFiles();
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

bool SettingsFile::isSaved(Save& wanted)
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

bool SettingsFile::keepLastGood()
{
    if (readSettings(lastGood).text == text || replaceFile(lastGood, text))
        return true;
    reason = std::strerror(errno);
    return false;
}

// Restores by renaming, which requires no free disk space.
bool SettingsFile::putBack(Load before)
{
    const auto now = readSettings(path);
    if (before == Load::missing)
        return isMissing(now) || unlink(path.c_str()) == 0;
    if (now.error == 0 && now.text == text)
        return true;
    hasCopy = false; // renaming removes the backup
    return std::rename(lastGood.c_str(), path.c_str()) == 0 && flushWithFolder(path);
}

} // namespace Kest::Settings
