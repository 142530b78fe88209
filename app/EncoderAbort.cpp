#include "app/EncoderAbort.h"

#include "app/FolderRemoval.h"
#include "text/Printable.h"

namespace Kest::App {
namespace {

// Identifies an encoder by its own actions, since any process can write any number into the pipe.
bool isEncoder(const AbortOrder& order, const std::vector<ProtectedFolder>& protectedOnes)
{
    return order.wroteToPipe || hasOpen(order.process, order.pipe) ||
           isOutputOf(order.process, openOutputFolder(order.output, protectedOnes), order.output);
}

bool hasEnded(const Settings::ProcessIdentity& process)
{
    return process.startTime == 0 || Settings::identifyProcess(process.pid) != process;
}

std::string abortInOrder(const AbortOrder& order, const std::atomic<bool>& stop)
{
    const auto protectedOnes = protectedFolders(order.settingsFolder);
    if (!hasEnded(order.process) && !isEncoder(order, protectedOnes))
        return "process " + std::to_string(order.process.pid) +
               " was not seen writing to the pipe, and the output is not its own";
    if (auto failure = Settings::endProcess(order.process); !failure.empty())
        return failure;
    // Opened again: the encoder may have created it since.
    const auto folder = openOutputFolder(order.output, protectedOnes);
    if (!folder.refusal.empty())
        return "output folder refused: " + folder.refusal;
    if (!folder.folder)
        return {};
    if (order.process.startTime == 0)
        return "output folder refused: no process had this number when it reported";
    if (!isOutputOf(order.process, folder, order.output))
        return "output folder refused: the output is older than the encoder, or another user's";
    const auto failure = removeFolder(folder, stop);
    return failure.empty() ? failure : "output folder not deleted: " + failure;
}

} // namespace

std::string abortEncoder(const AbortOrder& order, const std::atomic<bool>& stop)
{
    return Text::printable(abortInOrder(order, stop)); // a file's name may contain escape sequences
}

} // namespace Kest::App
