// The thread that hears the encoders, and the table of what they have reported.
#include "backend/Backend.h"
#include "backend/EncodingLine.h"
#include "log/Log.h"
#include "log/Output.h"

namespace Kest::Settings {

void Backend::namedPipeThreadloop()
{
    while (stopRequests == 0) {
        if (progressPipe.isMakeRequested())
            restorePipe();
        const auto piece = progressPipe.read();
        if (piece.hasFailed)
            break;
        if (piece.lines != nullptr)
            readLines(piece);
    }
    progressPipe.remove();
}

void Backend::readLines(const ProgressPipe::Piece& piece)
{
    piece.lines->feed(
        piece.bytes, [this](std::string_view line) { parse_1line(line); },
        [] {
            Lct::Log(Lct::eLogError, "encoding", "line of more than %zu bytes dropped",
                     LineSplitter::kLongestLine);
        });
}

// After a failure the monitor requests it again in its next pass; the earlier pipes are read meanwhile.
void Backend::restorePipe()
{
    const bool isFirst = progressPipe.descriptor() < 0;
    const int losses = progressPipe.lossesToAnother();
    if (!progressPipe.make())
        return;
    if (isFirst) {
        Lct::print("\nreading from : %s \n", fifoPath);
        Lct::print("\nfifo fd = %d \n", progressPipe.descriptor());
    } else if (losses < 2) {
        Lct::Log(Lct::eLogWarning, "encoding", "%s was gone and is made again", fifoPath);
    } else if (losses == 2) {
        Lct::Log(Lct::eLogWarning, "encoding",
                 "%s is replaced by another process that reads it, probably a second agent; it is made again "
                 "after up to %d s each time",
                 fifoPath, static_cast<int>(PipeRivalry::kMaxDelay.count()));
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
