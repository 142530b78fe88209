#include "backend/EncodingTable.h"

#include <cerrno>
#include <csignal>

namespace Kest::Settings {
namespace {

constexpr std::int32_t kFinished = 100; // per cent
constexpr std::size_t kAllocatorBytes = 16;
constexpr std::size_t kMapNodeBytes = 32;
constexpr std::size_t kListNodeBytes = 24;
constexpr int kMostProcessesAsked = 16;

std::size_t heapBytes(const std::string& text)
{
    static const auto withinItself = std::string().capacity();
    return text.capacity() > withinItself ? text.capacity() + 1 + kAllocatorBytes : 0;
}

// The file's name without its last extension.
std::string_view displayName(std::string_view path)
{
    const auto name = path.substr(path.rfind('/') + 1); // npos + 1 is 0
    return name.substr(0, name.rfind('.'));
}

bool isRunning(std::int32_t pid) { return pid > 0 && (kill(pid, 0) == 0 || errno == EPERM); }

} // namespace

const encodingStatus& EncodingTable::setPercentage(std::int32_t pid, std::int32_t percentage)
{
    auto& record = recordOf(pid);
    record.status.percentage = percentage;
    placeLast(record, percentage >= kFinished);
    makeRoom(pid);
    return record.status;
}

const encodingStatus& EncodingTable::setPath(std::int32_t pid, std::string_view path)
{
    auto& record = recordOf(pid);
    auto& status = record.status;
    bytesTaken -= bytesOf(status);
    status.path = path;
    status.name = displayName(path);
    status.nameText = status.name.c_str();
    bytesTaken += bytesOf(status);
    placeLast(record, record.isOver);
    makeRoom(pid);
    return status;
}

const encodingStatus& EncodingTable::setType(std::int32_t pid, std::string_view type)
{
    auto& record = recordOf(pid);
    auto& status = record.status;
    bytesTaken -= bytesOf(status);
    status.encType = type;
    bytesTaken += bytesOf(status);
    placeLast(record, record.isOver);
    makeRoom(pid);
    return status;
}

const encodingStatus& EncodingTable::addError(std::int32_t pid)
{
    auto& record = recordOf(pid);
    --record.status.errorCount;
    placeLast(record, true);
    makeRoom(pid);
    return record.status;
}

const encodingStatus* EncodingTable::find(std::int32_t pid) const
{
    const auto found = records.find(pid);
    return found == records.end() ? nullptr : &found->second.status;
}

EncodingTable::Record& EncodingTable::recordOf(std::int32_t pid)
{
    const auto [found, isNew] = records.try_emplace(pid);
    auto& record = found->second;
    if (isNew) {
        record.status.pid = pid;
        record.place = running.insert(running.end(), pid);
        bytesTaken += bytesOf(record.status);
    }
    return record;
}

// The record becomes the one heard of last.
void EncodingTable::placeLast(Record& record, bool isOver)
{
    auto& from = record.isOver ? over : running;
    auto& to = isOver ? over : running;
    to.splice(to.end(), from, record.place);
    record.isOver = isOver;
}

void EncodingTable::makeRoom(std::int32_t kept)
{
    while ((bytesTaken > mostBytes || records.size() > kMostRecords) && records.size() > 1)
        forget(oldest(kept));
}

std::int32_t EncodingTable::oldest(std::int32_t kept)
{
    if (!over.empty() && over.front() != kept)
        return over.front();
    // A few of those that still run are passed over, and are heard of last now.
    for (int asked = 0; asked < kMostProcessesAsked && isRunning(running.front()); ++asked)
        running.splice(running.end(), running, running.begin());
    if (running.front() == kept)
        running.splice(running.end(), running, running.begin());
    return running.front();
}

void EncodingTable::forget(std::int32_t pid)
{
    const auto found = records.find(pid);
    auto& record = found->second;
    bytesTaken -= bytesOf(record.status);
    (record.isOver ? over : running).erase(record.place);
    records.erase(found);
}

std::size_t EncodingTable::bytesOf(const encodingStatus& status)
{
    return sizeof(Record) + kMapNodeBytes + kListNodeBytes + 2 * kAllocatorBytes + heapBytes(status.encType) +
           heapBytes(status.path) + heapBytes(status.name);
}

} // namespace Kest::Settings
