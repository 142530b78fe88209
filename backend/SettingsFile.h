// The user's choices in their file: neither a full disk, nor a damaged file, nor a death at any moment loses
// them.
#pragma once

#include <juce_data_structures/juce_data_structures.h>

#include <cstdint>
#include <optional>
#include <string>

namespace Kest::Settings {

struct FileText;
struct SystemPaths;

enum class SaveResult : std::uint8_t {
    saved,
    failed,  // the choice holds until the agent ends
    refused, // the file cannot contain the text; the choice before holds
};

/// Wraps JUCE's store, which takes a cut file for a saved one and an unreadable file for an empty one. Beside
/// the settings file are its last good copy ("<file>.last") and, if there ever was one, a damaged file
/// ("<file>.bad"). Main thread; each failure is one log line.
class SettingsFile {
public:
    /// Makes the settings folder when it is missing, and tidies up behind an agent that died while saving.
    /// A settings file that is a symbolic link stays one: the file it leads to is used.
    SettingsFile(juce::ApplicationProperties& store, const SystemPaths& paths);
    /// Tries once more to save what could not be saved; one line says what is lost, and why.
    ~SettingsFile();
    SettingsFile(const SettingsFile&) = delete;
    SettingsFile& operator=(const SettingsFile&) = delete;

    /// What was chosen, saved or not. Of a file that is damaged or cannot be read, what its last good copy
    /// contains. Reads the disk and changes nothing there: `keep` sets a damaged file aside.
    const juce::PropertySet& values();

    /// Saves a choice, and all that could not be saved before. Unless all of it is saved, the file stays as
    /// it was.
    SaveResult keep(const char* key, const juce::var& value);

    /// The second half of saving, for when there is time: waits until what `keep` has saved is on the disk,
    /// and makes it the last good copy. False when the disk refuses; then the file is as it was before.
    bool settle();

    /// Until `reportHeld`, choices that cannot be saved are not logged; that logs one line for all of them.
    void holdReports() { isHolding = true; }
    void reportHeld();

private:
    enum class Load { whole, missing, failed };
    enum class Repair { no, yes }; // set a damaged file aside, and renew the last good copy

    /// What the store has saved and the disk has not confirmed.
    struct Save {
        Load before; // what there was, to be put back
        std::string text;
        juce::PropertySet values;
    };

    Load load(Repair repair);
    bool setAside();
    void useLastGood();
    bool save();
    bool isInFile(juce::PropertySet& choices);
    bool saveValues(Load before);
    void saveThroughStore();
    bool saveText(const std::string& newText);
    bool isSaved(Save& wanted);
    bool isWritable(const juce::StringPairArray& wanted);
    void giveUp(Load before);
    bool keepLastGood();
    bool putBack(Load before);
    void reportUnsaved(const char* what, const char* effect);

    juce::ApplicationProperties& store;
    const std::string path;
    const std::string lastGood;
    const std::string damaged;

    std::string text; // of the file, when it was last read or saved
    bool isLoaded = false;
    bool hasCopy = false; // the last good copy is of the same text
    std::optional<Save> unsettled;
    bool isReported = false;   // that the file cannot be used
    std::string reason;        // of the last failure
    bool isHolding = false;    // reports
    bool isHeld = false;       // a report
    juce::PropertySet inFile;  // the values of the file, or of its last good copy
    juce::PropertySet unsaved; // goes before `inFile`; the newest last
};

} // namespace Kest::Settings
