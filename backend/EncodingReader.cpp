#include "backend/EncodingReader.h"

#include "backend/SignalsBlocked.h"
#include "log/Log.h"
#include "log/Output.h"

#include <algorithm>

namespace Kest::Settings {
namespace {

constexpr std::chrono::milliseconds kIdentifiedFor{1}; // an id cannot be reused and report sooner
constexpr std::size_t kMaxIdentified = 64;             // process ids, searched for each line

} // namespace

EncodingReader::EncodingReader(std::string pathOfPipe, Report onReport)
    : fifoPath(std::move(pathOfPipe)), report(std::move(onReport))
{}

int EncodingReader::start()
{
    return startThread(pipeThread, [this] { namedPipeThreadloop(); });
}

void EncodingReader::stop()
{
    ++stopRequests;
    progressPipe.wake();
    if (pipeThread.joinable())
        pipeThread.join();
}

void EncodingReader::namedPipeThreadloop()
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

// After a failure the monitor requests it again in its next pass; earlier pipes are still read.
void EncodingReader::restorePipe()
{
    const bool isFirst = progressPipe.descriptor() < 0;
    const int losses = progressPipe.lossesToAnother();
    if (!progressPipe.make())
        return;
    if (isFirst) {
        Lct::print("\nfifo fd = %d \n", progressPipe.descriptor());
    } else if (losses < 2) {
        Lct::Log(Lct::eLogWarning, "encoding", "%s was missing and is created again", fifoPath.c_str());
    } else if (losses == 2) {
        Lct::Log(
            Lct::eLogWarning, "encoding",
            "%s is replaced by another process that reads it, probably a second agent; it is created again "
            "after up to %d s each time",
            fifoPath.c_str(), static_cast<int>(PipeRivalry::kMaxDelay.count()));
    }
}

void EncodingReader::readLines(const ProgressPipeReader::Piece& piece)
{
    if (const auto now = std::chrono::steady_clock::now(); now - identifiedSince >= kIdentifiedFor) {
        identified.clear();
        identifiedSince = now;
    }
    piece.lines->feed(
        piece.bytes, [this](std::string_view line) { parse_1line(line); },
        [this](std::string_view beginning) { dropLine(beginning); });
}

void EncodingReader::parse_1line(std::string_view line)
{
    const auto parsed = parseEncodingLine(line);
    if (!parsed)
        return;
    if (std::holds_alternative<OverlongValue>(parsed->content))
        Lct::Log(Lct::eLogError, "encoding", "path or type of 1024 bytes or more refused, process %d",
                 parsed->pid);
    take(*parsed);
}

// A refused path removes the previous one.
void EncodingReader::dropLine(std::string_view beginning)
{
    Lct::Log(Lct::eLogError, "encoding", "line of more than %zu bytes dropped",
             Text::LineSplitter::kMaxLineBytes);
    const auto parsed = parseEncodingLine(beginning);
    if (parsed && std::holds_alternative<OverlongValue>(parsed->content))
        take(*parsed);
}

void EncodingReader::take(const EncodingLine& line)
{
    identifyEncoder(line.pid);
    const encodingStatus* changed = nullptr;
    {
        const MutexLock lock(encodingMutex);
        changed = encodingStatuses.take(line);
    }
    // Valid without the lock: only this thread changes or removes a record.
    if (changed == nullptr)
        return;
    if (const auto* progress = std::get_if<ProgressLine>(&line.content))
        report(progress->percentage, line.pid, changed->nameText);
    else if (std::holds_alternative<ErrorLine>(line.content))
        report(-1, line.pid, changed->nameText);
}

// Identifies each process id once per `kIdentifiedFor`, because the system call takes longer than parsing the
// line. Runs without the lock, for which the main thread waits.
void EncodingReader::identifyEncoder(std::int32_t pid)
{
    if (std::ranges::find(identified, pid) != identified.end())
        return;
    if (identified.size() == kMaxIdentified)
        identified.clear();
    identified.push_back(pid);
    const auto process = identifyProcess(pid);
    {
        const MutexLock lock(encodingMutex);
        if (!encodingStatuses.setWriter(process))
            return;
    }
    if (!hasOpen(process, fifoPath))
        return;
    const MutexLock lock(encodingMutex);
    encodingStatuses.setHadPipeOpen(pid);
}

} // namespace Kest::Settings
