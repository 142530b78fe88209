// Every fixed path that the agent reads, writes or starts.
#pragma once

#include "lipc/SettingsRecord.h"
#include "tables/Settings.h"

#include <string>

namespace Kest::Settings {

/// The defaults are the paths of an installed agent. Tests replace them. `encodingProgressFifo` is the named
/// pipe into which encoders write. `facilitiesFolder` has one subfolder for each installed facility.
struct SystemPaths {
    std::string settingsFolder = "~/Library/Application Support/Kestronics"; // "~" means the home folder
    std::string encodingProgressFifo = kEncodingProgressFifo;
    std::string lastUserFile = "/Users/Shared/.kestsettings_lastuser.txt"; // login name of the last user
    std::string facilitiesFolder =
        "/Library/Application Support/Kestronics/MDA/Building blocks/Physical layouts";
    std::string restartCommand =
        "/Library/Application Support/Kestronics/K3DHost/K3DHost.RestartService.command";
    std::string uninstaller = "/Applications/Kestronics/Kest-3D Uninstall.app";
    std::string launchAgent = "/Library/LaunchAgents/com.kestronics.kest-settings.plist";
    // The names of the host's segments. The paths of the key files derive from them.
    std::string versionSegment = LIPC::kVersionSegment;
    std::string sessionSegment = LIPC::kSessionSegment;

    /// Returns the absolute path of the settings folder.
    std::string absoluteSettingsFolder() const;
    /// Returns the absolute path of the settings file.
    std::string settingsFile() const;
};

/// The name of the settings file without its extension.
constexpr char kSettingsName[] = "Kest-Settings";

} // namespace Kest::Settings
