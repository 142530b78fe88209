// The command line of kest-settings-ctl.
#pragma once

#include <optional>
#include <string>

namespace KestSettingsCtl {

struct Options {
    std::string command; // "menu", "get", "choose" or "watch"
    std::string path;    // the item's path, for "get" and "choose"; otherwise empty
    bool json = false;   // print the agent's replies unchanged
    bool paths = false;  // "menu": print only the paths of the items that can be chosen
    bool yes = false;    // "choose": confirm a choice that deletes files
    int timeout = 10;    // maximum time to wait for the agent's reply, in seconds
};

/// Returns the parsed options; nullopt if the program must exit: `exitStatus` is then its exit status.
std::optional<Options> parseOptions(int argc, char** argv, int& exitStatus);

} // namespace KestSettingsCtl
