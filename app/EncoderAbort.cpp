#include "app/EncoderAbort.h"

#include "app/FolderRemoval.h"
#include "text/Printable.h"

namespace Kest::App {
namespace {

// Identifies an encoder by its own actions, since any process can write any number into the pipe.
bool isEncoder(const AbortRequest& request, const std::vector<ProtectedFolder>& protectedOnes)
{
    return request.hadPipeOpen || hasOpen(request.process, request.pipe) ||
           isOutputOf(request.process, openOutputFolder(request.output, protectedOnes), request.output);
}

bool hasEnded(const Settings::ProcessIdentity& process)
{
    return process.startTime == 0 || Settings::identifyProcess(process.pid) != process;
}

std::string runAbort(const AbortRequest& request, const std::atomic<bool>& stop)
{
    const auto protectedOnes = protectedFolders(request.settingsFolder);
    if (!hasEnded(request.process) && !isEncoder(request, protectedOnes))
        return "process " + std::to_string(request.process.pid) +
               " was not seen writing to the pipe, and the output is not its own";
    if (auto failure = Settings::endProcess(request.process); !failure.empty())
        return failure;
    // Opened again: the encoder may have created it since.
    const auto folder = openOutputFolder(request.output, protectedOnes);
    if (!folder.refusal.empty())
        return "output folder refused: " + folder.refusal;
    if (!folder.folder)
        return {};
    if (request.process.startTime == 0)
        return "output folder refused: no process had this id at the time of its report";
    if (!isOutputOf(request.process, folder, request.output))
        return "output folder refused: the output is older than the encoder or belongs to another user";
    const auto failure = removeFolder(folder, stop);
    return failure.empty() ? failure : "output folder not deleted: " + failure;
}

} // namespace

std::string abortEncoder(const AbortRequest& request, const std::atomic<bool>& stop)
{
    return Text::printable(runAbort(request, stop)); // a file's name may contain escape sequences
}

} // namespace Kest::App
