// The command line of kest-settings-ctl.
#pragma once

#include <optional>
#include <string>

namespace KestSettingsCtl {

struct Options {
    std::string command; // "menu", "get", "choose" or "watch"
    std::string path;    // of `get` and `choose`
    bool json = false;
    bool paths = false; // menu: print the path of each item that can be chosen
    bool yes = false;
    int timeout = 10; // seconds
};

/// Returns the parsed options; nullopt if the program is to exit with `exitStatus`, after all output was
/// printed.
std::optional<Options> parseOptions(int argc, char** argv, int& exitStatus);

} // namespace KestSettingsCtl
