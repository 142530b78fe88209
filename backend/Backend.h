// The agent's core without a user interface: the host's state, the encodings and the user's settings.
#pragma once

#include "backend/EncodingReader.h"
#include "backend/SessionMonitor.h"
#include "backend/SystemPaths.h"
#include "tables/Settings.h"

#include <memory>

namespace juce { // declared only: its headers take longer to compile than a source of the agent
class ApplicationProperties;
class String;
class StringArray;
class var;
} // namespace juce

namespace Kest::Settings {

class SettingsFile;

/// Called on one of the Backend's threads, without a lock; must return quickly. If `type` is 0, `number` is
/// that of a status message. Otherwise `type` is the process id of an encoder, and `number` its percentage,
/// or -1 on failure. `description` is NUL-terminated or null, and valid only during the call.
using BackendMessageCallback = void(void* context, std::int32_t number, std::int32_t type,
                                    const char* description);

/// Called on the monitor thread, without a lock, when `hostState` has changed; must return quickly.
using HostStateCallback = void(void* context);

/// The agent has one Backend for its whole life. Operations are called on the main thread unless their
/// declaration says "Any thread". An absent segment is not an error: the host may start and end at any time.
/// A file that cannot be written, a key that cannot be derived and a pipe that cannot be created produce one
/// line each, in the log or on standard error. Nothing throws.
class Backend {
public:
    explicit Backend(SystemPaths systemPaths = {},
                     std::chrono::nanoseconds monitorPeriod = std::chrono::seconds(1));
    /// Stops and joins both threads; blocks until their current operation ends.
    ~Backend();
    Backend(const Backend&) = delete;
    Backend& operator=(const Backend&) = delete;

    /// Suppresses log lines about settings that cannot be saved; its destructor logs one line for all of
    /// them.
    class OneReport {
    public:
        explicit OneReport(Backend& ofBackend);
        ~OneReport();
        OneReport(const OneReport&) = delete;
        OneReport& operator=(const OneReport&) = delete;

    private:
        SettingsFile& file;
    };

    /// Returns 0, or the system's error number if it refused a thread; the Backend is not usable then.
    int startError() const { return startFailure; }

    /// Writes the login name of the effective user into the last-user file, which every user may overwrite.
    static void save_username(const std::string& path = SystemPaths().lastUserFile);

    /// Returns the stored value of a setting of `kParameterSettings`, or its default.
    int value(const Setting& setting) const;
    /// Saves the settings file, then writes the value into the host's session, if there is one, even if
    /// saving failed. Does not check the range.
    void setValue(const Setting& setting, int value);

    // `value` and `setValue` for one setting each.
    int getSoloMode() const { return value(setting("SoloMode")); } // 0 latch, 1 exclusive
    void setSoloMode(int mode) { setValue(setting("SoloMode"), mode); }
    int getHdxAuxTrackDelay() const { return value(setting("HdxAuxTrackDelaySetting")); }
    void setHdxAuxTrackDelay(int choice) { setValue(setting("HdxAuxTrackDelaySetting"), choice); }
    bool getDefaultPannerObjects() const { return value(setting("defaultPannerObjects")) != 0; }
    void setDefaultPannerObjects(bool on) { setValue(setting("defaultPannerObjects"), on ? 1 : 0); }
    int getDAW_LinkControl() const { return value(setting("DAWLinkControlSetting")); } // 0 off, 1 on
    void setDAW_LinkControl(int on) { setValue(setting("DAWLinkControlSetting"), on); }
    // 0 off, 1 on
    int getLatencyCompensationControl() const { return value(setting("LatencyCompensationControlSetting")); }
    void setLatencyCompensationControl(int on) { setValue(setting("LatencyCompensationControlSetting"), on); }

    /// Returns the names of the installed facilities in the file system's order; empty if there are none.
    juce::StringArray getFacilityList() const;
    juce::String getFacility() const;
    /// Saves the facility and writes it into the session. Does neither if the settings file cannot contain
    /// the name.
    void setFacility(const juce::String& name);

    /// Returns a speaker-configuration id of `sSpkrConf2Name`; -1 if the stored layout belongs to none.
    int getPhysMonConfig() const;
    /// Saves a speaker configuration and writes it into the session. Ignores an unknown id.
    void setPhysMonConfig(int speakerConfiguration);

    /// Replaces `names` by the buses' display names in the host's encoding: "Main Bus" first, the others
    /// sorted by byte. Any thread.
    void getKestBusNamesList(std::vector<std::string>& names) const { monitor.getBusNames(names); }
    /// Writes the session's default bus, without saving it. Ignores null and an unknown name.
    void setDefaultKestBus(const char* name);

    /// Returns the newest record of a process id; one with `pid` 0 if there is none. Any thread.
    encodingStatus getEncodingStatus(int pid) const;
    /// Returns the record of exactly this process; one with `pid` 0 if there is none. Any thread.
    encodingStatus getEncodingStatus(const ProcessIdentity& process) const;
    /// Returns the reader of the encoders' lines, for queries of its whole table. Any thread.
    const EncodingReader& encodings() const { return reader; }

    /// Returns the host's state at the monitor's last pass. Any thread.
    HostState hostState() const { return monitor.hostState(); }

    const SystemPaths& paths() const { return systemPaths; }

    // Set once by the owner after construction; messages are dropped before.
    std::atomic<BackendMessageCallback*> messageCallback = nullptr;
    std::atomic<HostStateCallback*> hostStateCallback = nullptr;
    std::atomic<void*> messageContext = nullptr; // of both

private:
    void sendMessage(std::int32_t number, std::int32_t type, const char* description) const;
    juce::String text(const Setting& setting) const;
    void applySetting(const Setting& setting, const juce::var& value,
                      const std::function<void(LIPC::ClientEntry&)>& writeToHost);

    const SystemPaths systemPaths;
    const std::unique_ptr<juce::ApplicationProperties> properties;
    const std::unique_ptr<SettingsFile> settingsFile; // saves through `properties`; getters may read the disk
    EncodingReader reader;
    SessionMonitor monitor;
    int startFailure = 0;
};

} // namespace Kest::Settings
