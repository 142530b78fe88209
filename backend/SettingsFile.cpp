#include "backend/SettingsFile.h"

#include "backend/FileText.h"
#include "backend/SettingsFileCheck.h"
#include "backend/SettingsPlace.h"
#include "backend/SystemPaths.h"
#include "log/Log.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <unistd.h>
#include <utility>

namespace Kest::Settings {
namespace {

// As the store itself reads them, but without touching a file.
juce::PropertySet valuesOf(const std::string& text)
{
    juce::PropertySet values;
    const auto document = juce::parseXML(juce::String::fromUTF8(text.c_str()));
    if (document != nullptr)
        for (const auto* row : document->getChildWithTagNameIterator("VALUE"))
            if (const auto& name = row->getStringAttribute("name"); name.isNotEmpty())
                values.setValue(name, row->getStringAttribute("val"));
    return values;
}

// Text that begins like markup the store would take for markup, and its parser may never come back.
bool canBeKept(const juce::String& value)
{
    juce::PropertySet one;
    one.setValue("value", value);
    const auto text = one.createXml("PROPERTIES")->toString().toStdString();
    return !value.trimStart().startsWithChar('<') && isSettingsText(text) &&
           valuesOf(text).getValue("value") == value;
}

FileText readSettings(const std::string& path) { return readFile(path, kLongestSettings + 1); }

bool isWell(const FileText& file) { return file.error == 0 && isSettingsText(file.text); }

bool isMissing(const FileText& file) { return file.error == ENOENT || file.error == ENOTDIR; }

void report(const std::string& path, const char* what, const char* why)
{
    Lct::LogAnswer(Lct::eLogError, "settings", "%.300s %s: %s", path.c_str(), what, why);
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
    unlink(temporaryOf(lastGood).c_str());
    store.setStorageParameters(storeOptions(path));
    unsaved.setFallbackPropertySet(&inFile);
}

SettingsFile::~SettingsFile()
{
    settle();
    if (unsaved.getAllProperties().size() > 0 && save())
        settle();
}

const juce::PropertySet& SettingsFile::values()
{
    settle();
    if (!isLoaded)
        load();
    return unsaved;
}

bool SettingsFile::keep(const char* key, const juce::var& value)
{
    settle();
    if (value.isString() && !canBeKept(value.toString())) {
        report(path, "not saved", "it cannot hold such a text");
        return false;
    }
    unsaved.setValue(key, value);
    return save();
}

bool SettingsFile::settle()
{
    auto save = std::exchange(unsettled, std::nullopt);
    if (!save)
        return true;
    if (!flushWithFolder(path))
        return giveUp(save->before);
    text = std::move(save->text);
    inFile = valuesOf(text);
    hasCopy = keepLastGood();
    unsaved.clear();
    return true;
}

SettingsFile::Load SettingsFile::load()
{
    auto file = readSettings(path);
    if (file.error == 0 && hasCopy && file.text == text) { // as it was left: nothing to check or to copy
        isLoaded = true;
        return Load::whole;
    }
    if (file.error == 0 && !isSettingsText(file.text) && setAside())
        file = readSettings(path);
    isLoaded = isWell(file) || isMissing(file);
    if (!isLoaded) {
        if (file.error != 0 && !std::exchange(isReported, true))
            report(path, "cannot be used, and is left alone", std::strerror(file.error));
        useLastGood();
        return Load::failed;
    }
    isReported = false;
    text = isMissing(file) ? std::string() : std::move(file.text);
    inFile = valuesOf(text);
    hasCopy = !isMissing(file) && keepLastGood();
    return isMissing(file) ? Load::missing : Load::whole;
}

void SettingsFile::useLastGood()
{
    hasCopy = false; // of what is in use now, and not of what was
    if (const auto copy = readSettings(lastGood); isWell(copy))
        inFile = valuesOf(copy.text);
}

// There is a file at each moment, so that a death in between does not look like a first start.
bool SettingsFile::setAside()
{
    const bool isCopyWell = isWell(readSettings(lastGood));
    unlink(damaged.c_str());
    const bool isAside = (isCopyWell && link(path.c_str(), damaged.c_str()) == 0) ||
                         std::rename(path.c_str(), damaged.c_str()) == 0;
    const int failure = errno;
    if (!isAside) {
        if (!std::exchange(isReported, true))
            report(path, "is damaged and cannot be set aside as .bad", std::strerror(failure));
        return false;
    }
    const bool isBack = isCopyWell && std::rename(lastGood.c_str(), path.c_str()) == 0;
    report(path, "is damaged",
           isBack ? "set aside as .bad; its last good copy is used" : "set aside as .bad");
    return true;
}

bool SettingsFile::save()
{
    isLoaded = false; // whatever comes of it, the file is read anew by whoever asks next
    const auto before = load();
    isLoaded = false;
    if (before == Load::failed) {
        report(path, "not saved", "it cannot be read");
        return false;
    }
    if (before == Load::whole && !hasCopy) {
        report(path, "not saved", "its last good copy cannot be kept");
        return false;
    }
    if (isInFile(unsaved)) { // at each start most choices are
        unsaved.clear();
        return true;
    }
    return saveThroughStore(before) || giveUp(before);
}

bool SettingsFile::isInFile(juce::PropertySet& choices)
{
    const auto& wanted = choices.getAllProperties();
    const auto& there = inFile.getAllProperties();
    return std::ranges::all_of(wanted.getAllKeys(), [&](const auto& key) {
        return there.containsKey(key) && there[key] == wanted[key];
    });
}

bool SettingsFile::giveUp(Load before)
{
    report(path, "not saved", putBack(before) ? "it is as it was" : "it is put right at the next start");
    return false;
}

bool SettingsFile::saveThroughStore(Load before)
{
    auto* file = store.getUserSettings();
    // What the store could not read it would save as nothing.
    const bool isRead = file->getAllProperties() == inFile.getAllProperties();
    if (isRead)
        file->addAllPropertiesFrom(unsaved);
    const auto wanted = file->getAllProperties();
    store.closeFiles();
    if (!isRead)
        return false;

    auto saved = readSettings(path);
    if (!isWell(saved) || valuesOf(saved.text).getAllProperties() != wanted)
        return false;
    unsettled = Save{before, std::move(saved.text)};
    return true;
}

bool SettingsFile::keepLastGood()
{
    return readSettings(lastGood).text == text || replaceFile(lastGood, text);
}

// By renaming, which needs no room on the disk.
bool SettingsFile::putBack(Load before)
{
    const auto now = readSettings(path);
    if (before == Load::missing)
        return isMissing(now) || unlink(path.c_str()) == 0;
    if (now.error == 0 && now.text == text)
        return true;
    hasCopy = false; // there is no other until the next look at the file
    return std::rename(lastGood.c_str(), path.c_str()) == 0 && flushWithFolder(path);
}

} // namespace Kest::Settings
