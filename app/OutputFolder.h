// Opens the folder of an encoder's output if it may be deleted, and checks that it is the encoder's own.
#pragma once

#include "app/FileSystem.h"
#include "app/ProtectedFolders.h"
#include "backend/Process.h"

namespace Kest::App {

/// An open output folder. The descriptors refer to it even if another folder replaces it at its path. If
/// `folder` is empty, there is nothing to delete or `refusal` is set.
struct OutputFolder {
    Settings::Descriptor folder;
    Settings::Descriptor parent;
    std::string name;    // of `folder` in `parent`
    std::string refusal; // why the folder must not be deleted; empty if it may be
};

/// Opens the folder that contains the file `output`, or refuses it. There is nothing to delete if `output`
/// contains no slash, names a file in the root folder, or the folder does not exist. Refuses a relative path,
/// a path with a quote, and a folder that is protected, contains a protected folder, or is or contains a
/// mount point. Any thread. Blocks as long as the disk does.
OutputFolder openOutputFolder(const std::string& output, const std::vector<ProtectedFolder>& protectedOnes);

/// Returns true if this user's file with the name in `output` was modified in the folder after the process
/// started. Also returns true if the folder belongs to this user and was created after the process started.
/// Returns false if the folder is not open or the start time of the process is unknown. Any thread.
bool isOutputOf(const Settings::ProcessIdentity& process, const OutputFolder& opened,
                const std::string& output);

} // namespace Kest::App
