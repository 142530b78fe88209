// The settings file. A full disk, a damaged file or a crash at any time loses no saved setting.
#pragma once

#include <juce_data_structures/juce_data_structures.h>

#include <cstdint>
#include <optional>
#include <string>

namespace Kest::Settings {

struct FileContent;
struct SystemPaths;

enum class SaveResult : std::uint8_t {
    saved,
    failed,  // the new value is in effect until the agent ends
    refused, // the file cannot contain the text; the previous value stays
};

/// Wraps JUCE's store, which accepts a truncated file as saved and an unreadable file as empty. The settings
/// folder also contains the backup ("<file>.last") and, after damage, the damaged file ("<file>.bad"). Main
/// thread. Logs one line for each failure.
class SettingsFile {
public:
    /// Creates the settings folder if it is missing, and deletes the temporary files of an agent that was
    /// killed while saving. If the settings file is a symbolic link, its target is used.
    SettingsFile(juce::ApplicationProperties& store, const SystemPaths& paths);
    /// Retries to save unsaved settings, and logs one line with those that are lost and the reason.
    ~SettingsFile();
    SettingsFile(const SettingsFile&) = delete;
    SettingsFile& operator=(const SettingsFile&) = delete;

    /// Returns the current settings, saved or not. Uses the backup if the file is damaged or unreadable.
    /// Reads the disk, and changes nothing there: `save` renames a damaged file.
    const juce::PropertySet& values();

    /// Saves a value, together with all values that could not be saved before. On failure the file is not
    /// changed.
    SaveResult save(const char* key, const juce::var& value);

    /// Completes `save`: waits until the file is on the disk, and copies it to the backup. Returns false if
    /// the disk fails, and restores the previous file.
    bool commit();

    /// Suppresses log lines about unsaved settings until `reportHeld`, which logs one line for all of them.
    void holdReports() { isHolding = true; }
    void reportHeld();

private:
    enum class Load { loaded, missing, failed };
    enum class Repair { no, yes }; // rename a damaged file, and renew the backup

    /// A save that the store has written and the disk has not confirmed.
    struct PendingSave {
        Load before; // state of the previous file, for restoring it
        std::string text;
        juce::PropertySet values;
    };

    Load load(Repair repair);
    bool quarantine();
    void useBackup();
    bool saveUnsaved();
    bool isInFile(juce::PropertySet& choices);
    bool saveValues(Load before);
    void saveThroughStore();
    bool saveText(const std::string& newText);
    bool isSaved(PendingSave& wanted);
    bool isWritable(const juce::StringPairArray& wanted);
    void rollBack(Load before);
    bool saveBackup();
    bool restoreBackup(Load before);
    void reportUnsaved(const char* what, const char* effect);

    juce::ApplicationProperties& store;
    const std::string path;
    const std::string backup;
    const std::string damaged;

    std::string text; // of the file at the last read or save
    bool isLoaded = false;
    bool isBackupCurrent = false; // the backup contains the same text
    std::optional<PendingSave> pendingSave;
    bool isReported = false;   // it was logged that the file cannot be used
    std::string reason;        // of the last failure
    bool isHolding = false;    // log lines are suppressed
    bool isHeld = false;       // a log line was suppressed
    juce::PropertySet inFile;  // the values of the file, or of the backup
    juce::PropertySet unsaved; // overrides `inFile`; the newest value last
};

} // namespace Kest::Settings
