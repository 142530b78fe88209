// Opens the folder of an encoder's output if the folder may be deleted, and checks that the output belongs to
// the encoder.
#pragma once

#include "app/FileSystem.h"
#include "app/ProtectedFolders.h"
#include "backend/Process.h"

namespace Kest::App {

/// An open output folder. The descriptors keep referring to the same folders, even if other folders replace
/// them at their paths. If `folder` is not open, either `refusal` is set or there is nothing to delete.
struct OutputFolder {
    Settings::Descriptor folder;
    Settings::Descriptor parent;
    std::string name;    // of `folder` in `parent`
    std::string refusal; // why the folder must not be deleted; empty if it may be
};

/// Opens the folder that contains the file `output`, or sets `refusal`. There is nothing to delete if
/// `output` contains no slash or is a file in the root folder. Otherwise refuses a relative path, and a path
/// whose folder part contains a single quote or a null byte, or has "." or ".." as its last component. For
/// other paths, there is nothing to delete if the folder does not exist. Refuses a folder if one of these is
/// true:
/// - It is a symbolic link or cannot be opened.
/// - It is protected by an element of `protectedOnes`.
/// - It is or contains a mount point.
///
/// Any thread. Blocks as long as the disk does.
OutputFolder openOutputFolder(const std::string& output, const std::vector<ProtectedFolder>& protectedOnes);

/// Returns true if `opened.folder` belongs to this user and was created after the process started. Also
/// returns true if the folder contains the file that `output` names, and this file belongs to this user and
/// was modified after the process started. Otherwise returns false, also if the folder is not open or the
/// start time of the process is unknown. Any thread.
bool isOutputOf(const Settings::ProcessIdentity& process, const OutputFolder& opened,
                const std::string& output);

} // namespace Kest::App
