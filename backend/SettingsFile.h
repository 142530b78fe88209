// Saves the settings so that a full disk, a damaged file or a crash loses no committed setting.
#pragma once

#include <juce_data_structures/juce_data_structures.h>

#include <cstdint>
#include <optional>
#include <string>

namespace Kest::Settings {

struct SystemPaths;

enum class SaveResult : std::uint8_t {
    saved,   // the file contains the value; `commit` makes it durable
    failed,  // the file does not contain the value, but it is in effect; later saves try to save it again
    refused, // the value is a text that the file cannot contain; the previous value stays in effect
};

/// The settings file and its backup. Wraps JUCE's store. The store reports success even after a partial
/// write, and reads a damaged file as empty; this class detects both. Beside the settings file are the backup
/// ("<file>.last") and, after damage, the damaged file ("<file>.bad"). Each refused save writes a line to the
/// log. Each failed save does too, except between `holdLogLine` and `logHeldLine`. Main thread only.
class SettingsFile {
public:
    /// Creates the settings folder if it is missing. Deletes the temporary files of an agent that was killed
    /// while it saved. If the settings file is a symbolic link, the target of the link is used.
    SettingsFile(juce::ApplicationProperties& store, const SystemPaths& paths);
    /// Commits the last save, and tries once more to save the values that could not be saved. If this fails,
    /// logs the names of the settings that are lost, with the reason.
    ~SettingsFile();
    SettingsFile(const SettingsFile&) = delete;
    SettingsFile& operator=(const SettingsFile&) = delete;

    /// Returns the settings in effect, including those that could not be saved. Reads the file, or the backup
    /// if the file is damaged or unreadable. Writes nothing. The reference is valid as long as this object
    /// exists; the next call of a function of this object may change its content.
    const juce::PropertySet& values();

    /// Commits the previous save, then writes a value into the file, together with all values that could not
    /// be saved before. If the file is damaged, it is first renamed to "<file>.bad", and a valid backup is
    /// renamed to "<file>". If the file is unreadable, it is not changed and the save fails.
    SaveResult save(const char* key, const juce::var& value);

    /// Waits until the last save is on the disk, then copies the file to the backup. If the disk reports an
    /// error, restores the file as it was before the save, and returns false; the values of that save are
    /// then treated as after `SaveResult::failed`. If only the copy fails, returns true; the next save first
    /// renews the backup, and fails if it cannot. Does nothing and returns true if there is no save to
    /// commit.
    bool commit();

    /// Until `logHeldLine` is called, failed saves write no lines to the log; refused saves still do.
    /// `logHeldLine` then writes one line for all settings that are still not saved, if there are any.
    void holdLogLine() { isHolding = true; }
    void logHeldLine();

private:
    enum class Load { loaded, missing, failed };
    enum class Repair { no, yes }; // whether to rename a damaged file and to renew the backup

    /// A save that is in the file, but perhaps not yet on the disk.
    struct PendingSave {
        Load before; // result of loading the file before the save; `rollBack` needs it
        std::string text;
        juce::PropertySet values;
    };

    Load load(Repair repair);
    bool quarantine();
    void useBackup();
    bool saveUncommitted();
    bool isInFile(juce::PropertySet& values);
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

    std::string text; // content of the file when it was last loaded or committed
    bool isLoaded = false;
    bool isBackupCurrent = false; // the backup contains `text`
    std::optional<PendingSave> pendingSave;
    bool isReported = false;       // it was logged that the file cannot be used
    std::string reason;            // why the last save failed
    bool isHolding = false;        // between `holdLogLine` and `logHeldLine`
    bool isHeld = false;           // a save has failed while `isHolding`
    juce::PropertySet inFile;      // the values of the file; of the backup if the file cannot be used
    juce::PropertySet uncommitted; // set but not yet committed, newest last; these values override `inFile`
};

} // namespace Kest::Settings
