// Every fixed place outside the agent that it reads, writes or starts.
#pragma once

#include "lipc/SettingsRecord.h"
#include "tables/Settings.h"

#include <string>

namespace Kest::Settings {

/// The defaults are the real places. Tests work in their own folders with others.
struct SystemPaths {
    std::string settingsFolder = "~/Library/Application Support/Kestronics"; // "~" is the user's home
    std::string encodingProgressFifo = kEncodingProgressFifo;
    std::string lastUserMarker = "/Users/Shared/.kestsettings_lastuser.txt";
    std::string facilitiesFolder =
        "/Library/Application Support/Kestronics/MDA/Building blocks/Physical layouts";
    std::string restartCommand =
        "/Library/Application Support/Kestronics/K3DHost/K3DHost.RestartService.command";
    std::string uninstaller = "/Applications/Kestronics/Kest-3D Uninstall.app";
    std::string launchAgent = "/Library/LaunchAgents/com.kestronics.kest-settings.plist";
    // Names of shared-memory segments, from which their key files follow.
    std::string versionSegment = LIPC::kVersionSegment;
    std::string sessionSegment = LIPC::kSessionSegment;

    /// The settings folder as an absolute path.
    std::string absoluteSettingsFolder() const;
    /// The settings file in it.
    std::string settingsFile() const;
};

/// The application's name for its settings; the file is called so.
constexpr char kSettingsName[] = "Kest-Settings";

} // namespace Kest::Settings
