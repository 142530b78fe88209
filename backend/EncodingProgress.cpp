// The thread that hears the encoders, and the table of what they have reported.
#include "backend/Backend.h"
#include "backend/EncodingLine.h"
#include "log/Log.h"
#include "log/Output.h"

namespace Kest::Settings {

void Backend::namedPipeThreadloop()
{
    while (stopRequests == 0) {
        if (progressPipe.isLost()) {
            restorePipe();
            continue; // a stop that was asked for meanwhile has woken nobody
        }
        const auto piece = progressPipe.read();
        if (piece.lines == nullptr)
            break;
        piece.lines->feed(
            piece.bytes, [this](std::string_view line) { parse_1line(line); },
            [] {
                Lct::Log(Lct::eLogError, "encoding", "line of more than %zu bytes dropped",
                         LineSplitter::kLongestLine);
            });
    }
    progressPipe.remove();
}

// What cannot be made now is tried again a pass of the monitor later.
void Backend::restorePipe()
{
    const bool isFirst = progressPipe.descriptor() < 0;
    if (!progressPipe.make()) {
        const MutexLock lock(stopMutex);
        stopSignal.wait_for(stopMutex, monitorPeriod, [this] { return stopRequests != 0; });
    } else if (isFirst) {
        Lct::print("\nreading from : %s \n", fifoPath);
        Lct::print("\nfifo fd = %d \n", progressPipe.descriptor());
    } else {
        Lct::Log(Lct::eLogWarning, "encoding", "%s was gone and is made again", fifoPath);
    }
}

void Backend::parse_1line(std::string_view line)
{
    if (const auto parsed = parseEncodingLine(line))
        std::visit([&](const auto& content) { take(parsed->pid, content); }, parsed->content);
}

void Backend::take(std::int32_t pid, const ProgressLine& line)
{
    const char* name = nullptr;
    {
        const MutexLock lock(encodingMutex);
        name = encodingStatuses.setPercentage(pid, line.percentage).nameText;
    }
    // Valid without the lock: only this thread changes a name.
    sendMessage(line.percentage, pid, name);
}

void Backend::take(std::int32_t pid, const PathLine& line)
{
    const MutexLock lock(encodingMutex);
    encodingStatuses.setPath(pid, line.path);
}

void Backend::take(std::int32_t pid, const TypeLine& line)
{
    const MutexLock lock(encodingMutex);
    encodingStatuses.setType(pid, line.word);
}

void Backend::take(std::int32_t pid, const ErrorLine&)
{
    const MutexLock lock(encodingMutex);
    // Within the lock: a failure and the record that tells of it are seen together.
    sendMessage(-1, pid, encodingStatuses.addError(pid).nameText);
}

void Backend::take(std::int32_t pid, const OverlongValue&)
{
    Lct::Log(Lct::eLogError, "encoding", "path or type of 1024 bytes or more refused, process %d", pid);
}

encodingStatus Backend::getEncodingStatus(int pid) const
{
    const MutexLock lock(encodingMutex);
    const auto* found = encodingStatuses.find(pid);
    return found == nullptr ? encodingStatus() : *found;
}

} // namespace Kest::Settings
