// The agent without its user interface: the host's state, the encodings and the user's settings.
#pragma once

#include "backend/EncodingReader.h"
#include "backend/SessionMonitor.h"
#include "backend/SystemPaths.h"
#include "tables/Settings.h"

#include <memory>

namespace juce { // declared only: JUCE's headers take longer to compile than a source file
class ApplicationProperties;
class String;
class StringArray;
class var;
} // namespace juce

namespace Kest::Settings {

class SettingsFile;

/// Called without a lock; must return quickly. `context` is `Backend::messageContext`.
/// If `type` is 0, the monitor thread makes the call. `number` is then a new status number of the host or
/// `kMsgBusListChanged`, and `description` is empty.
/// Otherwise the pipe thread, which reads the lines of encoders, makes the call. `type` is the process id of
/// the encoder; `number` is its percentage, or -1 after an error. `description` is the name of its output
/// file, or null if the name is unknown. `description` is NUL-terminated and valid during the call only.
using BackendMessageCallback = void(void* context, std::int32_t number, std::int32_t type,
                                    const char* description);

/// Called on the monitor thread, without a lock, after `hostState` has changed; must return quickly.
/// `context` is `Backend::messageContext`.
using HostStateCallback = void(void* context);

/// The agent has one Backend while it runs. Call a function on the main thread unless its comment says "Any
/// thread". No function throws.
/// Missing shared memory of the host is not an error, because the host may start and end at any time. If a
/// file cannot be written, the key of a segment cannot be derived, or the named pipe into which encoders
/// write cannot be created, the Backend writes a line to the log or to standard error.
class Backend {
public:
    /// Starts the monitor thread and the pipe thread, see `startError`. Calls `save_username`, except if
    /// the host is not 64 bit. `monitorPeriod` is the pause between two checks of the host. The first check
    /// follows `beginMonitoring`.
    explicit Backend(SystemPaths systemPaths = {},
                     std::chrono::nanoseconds monitorPeriod = std::chrono::seconds(1));
    /// Ends both threads; blocks until their current operation is done. No callback is called afterwards.
    ~Backend();
    Backend(const Backend&) = delete;
    Backend& operator=(const Backend&) = delete;

    /// While this object exists, no line is logged about a setting whose save fails. The destructor logs one
    /// line for all of these settings, if there are any.
    class CombinedSaveLogScope {
    public:
        explicit CombinedSaveLogScope(Backend& ofBackend);
        ~CombinedSaveLogScope();
        CombinedSaveLogScope(const CombinedSaveLogScope&) = delete;
        CombinedSaveLogScope& operator=(const CombinedSaveLogScope&) = delete;

    private:
        SettingsFile& file;
    };

    /// Returns 0 if both threads were started; otherwise the system's error number. After an error, the
    /// Backend can only be destroyed.
    int startError() const { return startFailure; }

    /// Begins to check the host now. Without this call, the first check follows `monitorPeriod` after the
    /// constructor. Call it when the callbacks are set and the start needs no more memory mappings: they
    /// would wait while the monitor thread maps the session.
    void beginMonitoring() { monitor.beginPasses(); }

    /// Writes the login name of the effective user into the file at `path`, and lets every user write the
    /// file. Does nothing if the folder of the file is missing or the user database has no such user. Logs
    /// any other failure to write.
    static void save_username(const std::string& path = SystemPaths().lastUserFile);

    /// Returns a setting of `kParameterSettings`: its value in the settings file, or its default if the file
    /// has no value. Exception: if the last value that was set could not be saved, returns that value.
    int value(const Setting& setting) const;
    /// Saves the value, then writes it into the agent's record in the host's session, if there is a session.
    /// Writes it into the record even if saving has failed. Does not check the range.
    void setValue(const Setting& setting, int value);

    // Get and set one setting each, as `value` and `setValue` do.
    int getSoloMode() const { return value(setting("SoloMode")); } // 0 latch, 1 exclusive
    void setSoloMode(int mode) { setValue(setting("SoloMode"), mode); }
    // 0 off, 1 low latency, 2 high latency
    int getHdxAuxTrackDelay() const { return value(setting("HdxAuxTrackDelaySetting")); }
    void setHdxAuxTrackDelay(int choice) { setValue(setting("HdxAuxTrackDelaySetting"), choice); }
    bool getDefaultPannerObjects() const { return value(setting("defaultPannerObjects")) != 0; }
    void setDefaultPannerObjects(bool on) { setValue(setting("defaultPannerObjects"), on ? 1 : 0); }
    int getDAW_LinkControl() const { return value(setting("DAWLinkControlSetting")); } // 0 off, 1 on
    void setDAW_LinkControl(int on) { setValue(setting("DAWLinkControlSetting"), on); }
    // 0 off, 1 on
    int getLatencyCompensationControl() const { return value(setting("LatencyCompensationControlSetting")); }
    void setLatencyCompensationControl(int on) { setValue(setting("LatencyCompensationControlSetting"), on); }

    /// Returns the names of the installed facilities in the order of the file system; empty if there are
    /// none. Each facility is a folder. Bytes that are not UTF-8 are replaced by U+FFFD.
    juce::StringArray getFacilityList() const;
    /// Returns the name of the chosen facility, even if it is not installed; the default if none was chosen.
    juce::String getFacility() const;
    /// Saves the facility's name and writes it into the session, as `setValue` does. If the settings file
    /// cannot contain the name, logs a line and changes nothing.
    void setFacility(const juce::String& name);

    /// Returns the id of the chosen speaker configuration, a key of `sSpkrConf2Name`. The setting contains
    /// only the layout of the configuration; if no configuration has this layout, returns -1.
    int getPhysMonConfig() const;
    /// Saves the layout of a speaker configuration and writes it into the session, as `setValue` does.
    /// Ignores an unknown id.
    void setPhysMonConfig(int speakerConfiguration);

    /// Replaces the content of `names` by the names of all buses, in Mac OS Roman. The first is "Main Bus",
    /// even if the session has no bus of this name; the others follow in byte order. Any thread.
    void getKestBusNamesList(std::vector<std::string>& names) const { monitor.getBusNames(names); }
    /// Makes the bus called `name` the session's default bus. `name` is encoded in Mac OS Roman. Does not
    /// save the choice. Does nothing if `name` is null or the session has no bus of this name.
    void setDefaultKestBus(const char* name);

    /// Returns the newest record of a process id; a default record, whose `pid` is 0, if there is none. Any
    /// thread.
    encodingStatus getEncodingStatus(int pid) const;
    /// Returns the record of exactly this process; a default record, whose `pid` is 0, if there is none. Any
    /// thread.
    encodingStatus getEncodingStatus(const ProcessIdentity& process) const;
    /// Returns the reader, whose `query` gives access to all records. Any thread.
    const EncodingReader& encodingReader() const { return reader; }

    /// Returns the host's state at the monitor's last check. Any thread.
    HostState hostState() const { return monitor.hostState(); }

    const SystemPaths& paths() const { return systemPaths; }

    // The owner sets these once after construction, `messageContext` first. While a callback is null, its
    // calls are skipped.
    std::atomic<BackendMessageCallback*> messageCallback = nullptr;
    std::atomic<HostStateCallback*> hostStateCallback = nullptr;
    std::atomic<void*> messageContext = nullptr; // argument of both callbacks

private:
    void sendMessage(std::int32_t number, std::int32_t type, const char* description) const;
    juce::String text(const Setting& setting) const;
    void applySetting(const Setting& setting, const juce::var& value,
                      const std::function<void(LIPC::ClientEntry&)>& writeToHost);

    const SystemPaths systemPaths;
    const std::unique_ptr<juce::ApplicationProperties> properties; // used by `settingsFile` only
    const std::unique_ptr<SettingsFile> settingsFile;
    EncodingReader reader;
    SessionMonitor monitor;
    int startFailure = 0;
};

} // namespace Kest::Settings
