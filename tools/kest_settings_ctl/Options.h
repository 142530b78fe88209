// The command line of kest-settings-ctl.
#pragma once

#include <optional>
#include <string>

namespace KestSettingsCtl {

struct Options {
    std::string command; // "menu", "get", "choose" or "watch"
    std::string path;    // of the item, for "get" and "choose"; otherwise empty
    bool json = false;   // print the agent's replies as they are
    bool paths = false;  // "menu": print the path of each item that can be chosen
    bool yes = false;    // "choose": confirm a choice that deletes files
    int timeout = 10;    // in seconds, for the agent's reply
};

/// Returns the parsed options; nullopt if the program must exit with `exitStatus`, see `CommandLine::parse`.
std::optional<Options> parseOptions(int argc, char** argv, int& exitStatus);

} // namespace KestSettingsCtl
