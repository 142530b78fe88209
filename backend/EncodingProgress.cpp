// The thread that hears the encoders, and the table of what they have reported.
#include "backend/Backend.h"
#include "backend/EncodingLine.h"
#include "log/Log.h"
#include "log/Output.h"

#include <algorithm>

namespace Kest::Settings {
namespace {

constexpr std::chrono::milliseconds kIdentifiedFor{1}; // no process ends, starts and reports in less
constexpr std::size_t kMaxIdentified = 64;             // numbers, searched for each line

} // namespace

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
    if (const auto now = std::chrono::steady_clock::now(); now - identifiedSince >= kIdentifiedFor) {
        identified.clear();
        identifiedSince = now;
    }
    piece.lines->feed(
        piece.bytes, [this](std::string_view line) { parse_1line(line); },
        [this](std::string_view beginning) { dropLine(beginning); });
}

// After a failure the monitor requests it again in its next pass; the earlier pipes are read meanwhile.
void Backend::restorePipe()
{
    const bool isFirst = progressPipe.descriptor() < 0;
    const int losses = progressPipe.lossesToAnother();
    if (!progressPipe.make())
        return;
    if (isFirst) {
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
    const auto parsed = parseEncodingLine(line);
    if (!parsed)
        return;
    identifyEncoder(parsed->pid);
    std::visit([&](const auto& content) { take(parsed->pid, content); }, parsed->content);
}

// A path that was refused must not leave the one before it in its place.
void Backend::dropLine(std::string_view beginning)
{
    Lct::Log(Lct::eLogError, "encoding", "line of more than %zu bytes dropped",
             Text::LineSplitter::kLongestLine);
    const auto parsed = parseEncodingLine(beginning);
    const auto* value = parsed ? std::get_if<OverlongValue>(&parsed->content) : nullptr;
    if (value == nullptr || !value->isPath)
        return;
    identifyEncoder(parsed->pid);
    take(parsed->pid, PathLine{});
}

// Once for each number in a while: asking the system takes longer than the line. Not within the lock, which
// the main thread waits for.
void Backend::identifyEncoder(std::int32_t pid)
{
    if (std::ranges::find(identified, pid) != identified.end())
        return;
    if (identified.size() == kMaxIdentified)
        identified.clear();
    identified.push_back(pid);
    const auto process = identifyProcess(pid);
    {
        const MutexLock lock(encodingMutex);
        if (!encodingStatuses.identify(process))
            return;
    }
    if (!hasOpen(process, systemPaths.encodingProgressFifo))
        return;
    const MutexLock lock(encodingMutex);
    encodingStatuses.setWroteToPipe(pid);
}

void Backend::take(std::int32_t pid, const ProgressLine& line)
{
    const encodingStatus* changed = nullptr;
    {
        const MutexLock lock(encodingMutex);
        changed = encodingStatuses.setPercentage(pid, line.percentage);
    }
    // Valid without the lock: only this thread changes or removes a record.
    if (changed != nullptr)
        sendMessage(line.percentage, pid, changed->nameText);
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
    if (const auto* changed = encodingStatuses.addError(pid))
        sendMessage(-1, pid, changed->nameText);
}

void Backend::take(std::int32_t pid, const OverlongValue& line)
{
    Lct::Log(Lct::eLogError, "encoding", "path or type of 1024 bytes or more refused, process %d", pid);
    if (line.isPath)
        take(pid, PathLine{});
}

encodingStatus Backend::getEncodingStatus(int pid) const
{
    const MutexLock lock(encodingMutex);
    const auto* found = encodingStatuses.find(pid);
    return found == nullptr ? encodingStatus() : *found;
}

encodingStatus Backend::getEncodingStatus(const ProcessIdentity& process) const
{
    const MutexLock lock(encodingMutex);
    const auto* found = encodingStatuses.find(process);
    return found == nullptr ? encodingStatus() : *found;
}

} // namespace Kest::Settings
