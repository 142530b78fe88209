// The folder of an encoder's output: whether it may be deleted, and whether it is the encoder's own.
#pragma once

#include "app/FileSystem.h"
#include "app/ProtectedFolders.h"
#include "backend/Process.h"

namespace Kest::App {

/// Open, so that whatever is exchanged under its path afterwards, this folder is meant and no other.
struct OutputFolder {
    Settings::Descriptor folder; // none: there is nothing to delete, or it is refused
    Settings::Descriptor parent;
    std::string name;    // in the parent
    std::string refusal; // why it must not be deleted; empty otherwise
};

/// Opens the folder that an output file is in, or refuses it. There is nothing to delete when the path is
/// empty, has no folder or only the root, or names a folder that does not exist. Any thread.
OutputFolder openOutputFolder(const std::string& output, const std::vector<ProtectedFolder>& protectedOnes);

/// Returns whether this user's file of the output's name was modified in it, or this user's folder itself was
/// created, after the process started. Any thread.
bool isOutputOf(const Settings::ProcessIdentity& process, const OutputFolder& opened,
                const std::string& output);

} // namespace Kest::App
