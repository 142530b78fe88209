// The agent's core without a user interface: what it knows of the host and of encodings, and the user's
// choices.
#pragma once

#include "backend/EncodingTable.h"
#include "backend/Guarded.h"
#include "backend/ProgressPipe.h"
#include "backend/SystemPaths.h"
#include "lipc/MarkerWatch.h"
#include "tables/Settings.h"

#include <juce_core/juce_core.h>
#include <juce_data_structures/juce_data_structures.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

namespace LIPC {
struct ClientEntry;
struct SessionBuffer;
} // namespace LIPC

namespace Kest::Settings {

struct ProgressLine;
struct PathLine;
struct TypeLine;
struct ErrorLine;
struct OverlongValue;
class SettingsFile;

/// Called on one of the Backend's threads; must return quickly and must not call the Backend. `type` 0 is a
/// status message with its number; a type above 0 is the process id of an encoder, and `number` its
/// percentage or -1 on failure. `description` is NUL-terminated, may be null, and is valid only during the
/// call.
using BackendMessageCallback = void(void* context, std::int32_t number, std::int32_t type,
                                    const char* description);

/// What the agent sees of the host: no session, its session, or one of another pointer width, which it leaves
/// alone until it is started again.
enum class HostState : std::uint8_t { absent, attached, refused };

/// Called on one of the Backend's threads when `hostState` has changed.
using HostStateCallback = void(void* context);

/// The session's set of bus plug-ins has changed.
constexpr std::int32_t kMsgBusListChanged = 3;

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
        explicit OneReport(Backend& ofBackend);
        ~OneReport();
        OneReport(const OneReport&) = delete;
        OneReport& operator=(const OneReport&) = delete;

    private:
        Backend& backend;
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
    /// sorted by byte. Not to be called from the message callback.
    void getKestBusNamesList(std::vector<std::string>& names) const;
    /// Makes a bus the session's default bus; null or the name of no bus changes nothing. Not remembered.
    void setDefaultKestBus(const char* name);

    /// Returns the record of the process that reported last with this number; one with `pid` 0 when there is
    /// none. Any thread, but not from the message callback.
    encodingStatus getEncodingStatus(int pid) const;
    /// The same of exactly this process.
    encodingStatus getEncodingStatus(const ProcessIdentity& process) const;

    /// As the monitor's last pass found it. Any thread.
    HostState hostState() const;

    const SystemPaths& paths() const { return systemPaths; }

private:
    // The threads' bodies.
    void namedPipeThreadloop();
    void timerThreadloop();

    // Session monitor.
    struct MonitorState {
        std::int32_t lastHostMessage = 0;
        int unstablePasses = 0;   // in a row, in which the buses changed between two scans
        LIPC::MarkerWatch marker; // of the session
    };
    void monitorPass(MonitorState& state);
    void refreshMarkers() const;
    void checkVersionAgain();
    void noteSession(bool isThere);
    void hostStateChanged() const;
    void passHostMessageOn(const LIPC::ClientEntry& own, MonitorState& state);
    void refreshBusClients(const LIPC::SessionBuffer& session, MonitorState& state) KEST_UNCHECKED;
    bool acceptsHost();
    void refuseHost();

    // Encoding progress.
    void restorePipe();
    void readLines(const ProgressPipe::Piece& piece);
    void parse_1line(std::string_view line);
    void dropLine(std::string_view beginning);
    void identifyEncoder(std::int32_t pid);
    void take(std::int32_t pid, const ProgressLine& line);
    void take(std::int32_t pid, const PathLine& line);
    void take(std::int32_t pid, const TypeLine& line);
    void take(std::int32_t pid, const ErrorLine& line);
    void take(std::int32_t pid, const OverlongValue& line);

    void sendMessage(std::int32_t number, std::int32_t type, const char* description) const;

    // Settings store.
    juce::String text(const Setting& setting) const;
    void applySetting(const Setting& setting, const juce::var& value,
                      const std::function<void(LIPC::ClientEntry&)>& tell);
    void withOwnRecord(const std::function<void(LIPC::ClientEntry&)>& write) const;

    const SystemPaths systemPaths;
    const std::chrono::nanoseconds monitorPeriod;
    const char* const fifoPath; // the characters of `systemPaths`
    std::unique_ptr<juce::ApplicationProperties> properties;
    std::unique_ptr<SettingsFile> settingsFile; // saves through `properties`

public:
    // Assigned once by the owner, after construction; until then messages are dropped.
    std::atomic<BackendMessageCallback*> messageCallback = nullptr;
    std::atomic<HostStateCallback*> hostStateCallback = nullptr;
    std::atomic<void*> messageContext = nullptr; // of both

private:
    std::atomic<std::int32_t> stopRequests = 0; // raised by the destructor alone
    int startFailure = 0;
    std::thread pipeThread;
    mutable Mutex encodingMutex;
    EncodingTable encodingStatuses KEST_GUARDED_BY(encodingMutex);
    // Pipe thread only: the numbers whose processes were identified just now.
    std::vector<std::int32_t> identified;
    std::chrono::steady_clock::time_point identifiedSince;
    std::atomic<bool> sessionIsThere = false;
    // Not 0: the host is refused, and only the settings file is written. Never 0 again.
    std::atomic<std::uint32_t> hostArchMismatch = 0;
    bool versionIsPending = false; // the host has not published its word size yet; for the monitor
    std::map<std::string, std::string> busClients KEST_GUARDED_BY(busMutex); // display name to client id
    mutable Mutex busMutex;

    ProgressPipe progressPipe{fifoPath};
    Mutex stopMutex;
    std::condition_variable_any stopSignal; // wakes both threads from their pauses
    std::thread monitorThread;
};

} // namespace Kest::Settings
