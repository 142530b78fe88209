// Opens the folder of an encoder's output, and checks whether it may be deleted and is the encoder's own.
#pragma once

#include "app/FileSystem.h"
#include "app/ProtectedFolders.h"
#include "backend/Process.h"

namespace Kest::App {

/// An open output folder: the descriptors refer to it even if another folder replaces it at its path.
struct OutputFolder {
    Settings::Descriptor folder; // empty: nothing to delete, or refused
    Settings::Descriptor parent;
    std::string name;    // in the parent
    std::string refusal; // why it must not be deleted; empty if it may
};

/// Opens the folder that contains an output file, or refuses it. There is nothing to delete if the path is
/// empty, has no folder or only the root, or names a folder that does not exist. Any thread.
OutputFolder openOutputFolder(const std::string& output, const std::vector<ProtectedFolder>& protectedOnes);

/// Returns whether, after the process started, this user's file of the output's name was modified in the
/// folder or this user's folder was created. Any thread.
bool isOutputOf(const Settings::ProcessIdentity& process, const OutputFolder& opened,
                const std::string& output);

} // namespace Kest::App
