// The agent's core without a user interface: what it knows of the host and of encodings, and the user's
// choices.
#pragma once

#include "backend/EncodingReader.h"
#include "backend/SessionMonitor.h"
#include "backend/SettingsFile.h"
#include "backend/SystemPaths.h"
#include "tables/Settings.h"

namespace Kest::Settings {

/// Called on one of the Backend's threads, without a lock; must return quickly. `type` 0 is a status message
/// with its number; a type above 0 is the process id of an encoder, and `number` its percentage or -1 on
/// failure. `description` is NUL-terminated, may be null, and is valid only during the call.
using BackendMessageCallback = void(void* context, std::int32_t number, std::int32_t type,
                                    const char* description);

/// Called on the monitor's thread, without a lock, when `hostState` has changed; must return quickly.
using HostStateCallback = void(void* context);

/// One lives as long as the agent. Unless a declaration says otherwise, operations are called on the main
/// thread. An absent segment is no failure, as the host may start and end at any time. A file that cannot be
/// written, a key that cannot be derived and a pipe that cannot be created are one line each, in the log or
/// on standard error. Nothing throws.
class Backend {
public:
    explicit Backend(SystemPaths systemPaths = {},
                     std::chrono::nanoseconds monitorPeriod = std::chrono::seconds(1));
    /// Ends and joins both threads; takes no longer than what they are just doing.
    ~Backend();
    Backend(const Backend&) = delete;
    Backend& operator=(const Backend&) = delete;

    /// While it lives, choices that cannot be saved are not logged; its end logs one line for all of them.
    class OneReport {
    public:
        explicit OneReport(Backend& ofBackend) : file(ofBackend.settingsFile) { file.holdReports(); }
        ~OneReport() { file.reportHeld(); }
        OneReport(const OneReport&) = delete;
        OneReport& operator=(const OneReport&) = delete;

    private:
        SettingsFile& file;
    };

    /// 0, or the system's error number when it refused a thread: then nothing of this works.
    int startError() const { return startFailure; }

    /// Writes the login name of the effective user into the last-user marker, which everybody may overwrite.
    static void save_username(const std::string& markerPath = SystemPaths().lastUserMarker);

    /// Returns the stored value of a setting of `kParameterSettings`, or its default.
    int value(const Setting& setting) const;
    /// Saves the settings file first and then writes the host's session, if there is one, also when the file
    /// could not be saved. No range is enforced.
    void setValue(const Setting& setting, int value);

    // The same for one setting each.
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

    /// The names of the installed room layouts, in the file system's order; empty when there are none.
    juce::StringArray getFacilityList() const;
    juce::String getFacility() const { return text(setting("Facility")); }
    /// A name that the settings file cannot contain is refused: neither the file nor the host gets it.
    void setFacility(const juce::String& name);

    /// A speaker-configuration id of `sSpkrConf2Name`; -1 when the stored layout belongs to none.
    int getPhysMonConfig() const;
    /// Ignores an id that is none.
    void setPhysMonConfig(int speakerConfiguration);

    /// Replaces `names` by the buses' display names, bytes as the host has them: "Main Bus" first, the others
    /// sorted by byte. Any thread.
    void getKestBusNamesList(std::vector<std::string>& names) const { monitor.getBusNames(names); }
    /// Makes a bus the session's default bus; null or the name of no bus changes nothing. Not remembered.
    void setDefaultKestBus(const char* name);

    /// Returns the record of the process that reported last with this number; one with `pid` 0 when there is
    /// none. Any thread.
    encodingStatus getEncodingStatus(int pid) const;
    /// The same of exactly this process.
    encodingStatus getEncodingStatus(const ProcessIdentity& process) const;
    /// The table of encodings, to be queried as a whole. Any thread.
    const EncodingReader& encodings() const { return reader; }

    /// As the monitor's last pass found it. Any thread.
    HostState hostState() const { return monitor.hostState(); }

    const SystemPaths& paths() const { return systemPaths; }

    // Assigned once by the owner, after construction; until then messages are dropped.
    std::atomic<BackendMessageCallback*> messageCallback = nullptr;
    std::atomic<HostStateCallback*> hostStateCallback = nullptr;
    std::atomic<void*> messageContext = nullptr; // of both

private:
    void sendMessage(std::int32_t number, std::int32_t type, const char* description) const;
    juce::String text(const Setting& setting) const;
    void applySetting(const Setting& setting, const juce::var& value,
                      const std::function<void(LIPC::ClientEntry&)>& writeToHost);

    const SystemPaths systemPaths;
    juce::ApplicationProperties properties;
    mutable SettingsFile settingsFile; // saves through `properties`; a getter may read it from the disk
    EncodingReader reader;
    SessionMonitor monitor;
    int startFailure = 0;
};

} // namespace Kest::Settings
