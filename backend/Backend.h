// The agent without its user interface: the host's state, the encodings and the user's settings.
#pragma once

#include "backend/EncodingReader.h"
#include "backend/SessionMonitor.h"
#include "backend/SystemPaths.h"
#include "tables/Settings.h"

#include <memory>

namespace juce { // declared only, because JUCE's headers take long to compile
class ApplicationProperties;
class String;
class StringArray;
class var;
} // namespace juce

namespace Kest::Settings {

class SettingsFile;

/// Called without a lock; must return quickly. `context` is `Backend::messageContext`.
/// The monitor thread, which checks the host, passes as `number` either a new status number of the host, or
/// `kMsgBusListChanged`. `type` is 0, and `description` is empty.
/// The pipe thread, which reads the lines of encoders, passes the percentage in a line as `number`, or -1 for
/// an error. `type` is the process id in the line. `description` is the name of the encoder's output file
/// without its last extension, NUL-terminated and valid during the call only; null if the name is unknown.
using BackendMessageCallback = void(void* context, std::int32_t number, std::int32_t type,
                                    const char* description);

/// Called on the monitor thread, without a lock, after the result of `Backend::hostState` has changed; must
/// return quickly. `context` is `Backend::messageContext`.
using HostStateCallback = void(void* context);

/// The agent has one Backend while it runs. Call a function on the main thread unless its comment says "Any
/// thread". No function throws.
/// Missing shared memory of the host is not an error, because the host may start and end at any time. The
/// Backend writes a line to the log or to standard error if it cannot write a file, derive the key of a
/// shared memory segment, or create the named pipe into which encoders write.
class Backend {
public:
    /// Starts the monitor thread and the pipe thread, see `startError`. Calls `save_username` with
    /// `systemPaths.lastUserFile`, except if the host is not 64 bit. `monitorPeriod` is the pause between two
    /// checks of the host. See `beginMonitoring` for the first check.
    explicit Backend(SystemPaths systemPaths = {},
                     std::chrono::nanoseconds monitorPeriod = std::chrono::seconds(1));
    /// Ends both threads; blocks until their current operation is done. Afterwards no callback is called.
    ~Backend();
    Backend(const Backend&) = delete;
    Backend& operator=(const Backend&) = delete;

    /// While this object exists, no line is logged if a setting cannot be saved, except for a text that the
    /// settings file cannot contain. The destructor logs one line that names all settings that are still not
    /// saved, if there are any. Only one such object may exist.
    class CombinedSaveLogScope {
    public:
        explicit CombinedSaveLogScope(Backend& ofBackend);
        ~CombinedSaveLogScope();
        CombinedSaveLogScope(const CombinedSaveLogScope&) = delete;
        CombinedSaveLogScope& operator=(const CombinedSaveLogScope&) = delete;

    private:
        SettingsFile& file;
    };

    /// Returns 0 if both threads were started; otherwise the system's error number. After an error, at least
    /// one thread is missing, and the agent must end.
    int startError() const { return startFailure; }

    /// Starts the first check of the host now, on the monitor thread. Without this call, the first check
    /// follows `monitorPeriod` after the constructor. Call this function late in the agent's start, after
    /// setting the callbacks: mapping memory on another thread waits while the monitor thread maps the host's
    /// session.
    void beginMonitoring() { monitor.beginPasses(); }

    /// Writes the login name of the effective user into the file at `path`, and lets every user write the
    /// file. Does nothing if the folder of the file is missing or the user database has no such user. Logs a
    /// line if the file cannot be opened or written for another reason.
    static void save_username(const std::string& path = SystemPaths().lastUserFile);

    /// Returns the value of a setting of `kParameterSettings`. If the last value passed to `setValue` for
    /// this setting could not be saved, returns that value. Otherwise returns the value in the settings file,
    /// or in its backup if the file cannot be used; the default if the file contains no value.
    int value(const Setting& setting) const;
    /// Saves the value in the settings file. Then, even if saving has failed, writes the value into the
    /// agent's record in the host's session, if there is such a record. Does not check the range.
    void setValue(const Setting& setting, int value);

    // Each pair gets and sets one setting, as `value` and `setValue` do.
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

    /// Returns the names of the installed facilities, which are the subfolders of
    /// `SystemPaths::facilitiesFolder`; empty if there are none. The order is that of the file system. In
    /// each name, U+FFFD replaces each byte that is not valid UTF-8.
    juce::StringArray getFacilityList() const;
    /// Returns the name of the chosen facility, even if it is not installed; the default if none was chosen.
    juce::String getFacility() const;
    /// Saves the facility's name and writes it into the agent's record, as `setValue` does. If the settings
    /// file cannot contain the name, logs a line and changes nothing.
    void setFacility(const juce::String& name);

    /// Returns the id of the chosen speaker configuration, a key of `sSpkrConf2Name` in KestSettingsTables.h.
    /// The settings file contains the layout of the configuration instead of its id; if no configuration has
    /// this layout, returns -1.
    int getPhysMonConfig() const;
    /// Saves the layout of the speaker configuration with this id and writes it into the agent's record, as
    /// `setValue` does. Does nothing if the id is unknown.
    void setPhysMonConfig(int speakerConfiguration);

    /// Replaces the content of `names` by the names of all buses at the last check of the host, in Mac OS
    /// Roman. The first is "Main Bus", even if no bus has this name; the others follow in byte order. Any
    /// thread.
    void getKestBusNamesList(std::vector<std::string>& names) const { monitor.getBusNames(names); }
    /// Makes the bus called `name` the session's default bus. `name` is encoded in Mac OS Roman. Does not
    /// save the choice in the settings file. Does nothing if `name` is null, if no bus had this name at the
    /// last check of the host, or if there is no session.
    void setDefaultKestBus(const char* name);

    /// Returns a copy of the newest encoding record of a process id; a default record, whose `pid` is 0, if
    /// there is none. Any thread.
    encodingStatus getEncodingStatus(int pid) const;
    /// Returns a copy of the encoding record of exactly this process; a default record, whose `pid` is 0, if
    /// there is none. Any thread.
    encodingStatus getEncodingStatus(const ProcessIdentity& process) const;
    /// Returns the reader, whose `query` gives access to all encoding records. Any thread.
    const EncodingReader& encodingReader() const { return reader; }

    /// Returns the host's state at the last check by the monitor thread. Any thread.
    HostState hostState() const { return monitor.hostState(); }

    const SystemPaths& paths() const { return systemPaths; }

    // The owner sets these once after construction, `messageContext` first. A callback that is null is not
    // called.
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
