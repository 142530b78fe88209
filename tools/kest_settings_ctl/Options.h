// The command line of kest-settings-ctl.
#pragma once

#include <optional>
#include <string>

namespace KestSettingsCtl {

struct Options {
    std::string command; // "menu", "get", "choose" or "watch"
    std::string path;    // of `get` and `choose`
    bool json = false;
    bool paths = false; // menu: the paths that can be chosen, a line each
    bool yes = false;
    int timeout = 10; // seconds
};

/// Returns none when the program is to end with `exitStatus`; then its output has been printed.
std::optional<Options> parseOptions(int argc, char** argv, int& exitStatus);

} // namespace KestSettingsCtl
