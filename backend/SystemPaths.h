// Every fixed path that the agent reads, writes or starts.
#pragma once

#include "lipc/SettingsRecord.h"
#include "tables/Settings.h"

#include <string>

namespace Kest::Settings {

/// The defaults are the real paths. Tests use their own folders.
struct SystemPaths {
    std::string settingsFolder = "~/Library/Application Support/Kestronics"; // "~" is the user's home
    std::string encodingProgressFifo = kEncodingProgressFifo;
    std::string lastUserFile = "/Users/Shared/.kestsettings_lastuser.txt";
    std::string facilitiesFolder =
        "/Library/Application Support/Kestronics/MDA/Building blocks/Physical layouts";
    std::string restartCommand =
        "/Library/Application Support/Kestronics/K3DHost/K3DHost.RestartService.command";
    std::string uninstaller = "/Applications/Kestronics/Kest-3D Uninstall.app";
    std::string launchAgent = "/Library/LaunchAgents/com.kestronics.kest-settings.plist";
    // Names of shared-memory segments, from which the paths of their key files are derived.
    std::string versionSegment = LIPC::kVersionSegment;
    std::string sessionSegment = LIPC::kSessionSegment;

    /// Returns the absolute path of the settings folder.
    std::string absoluteSettingsFolder() const;
    /// Returns the absolute path of the settings file.
    std::string settingsFile() const;
};

/// The base name of the settings file.
constexpr char kSettingsName[] = "Kest-Settings";

} // namespace Kest::Settings
