#include "backend/EncodingTable.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <utility>

namespace Kest::Settings {
namespace {

constexpr std::int32_t kFinished = 100; // per cent
constexpr std::size_t kAllocatorBytes = 16;
constexpr std::size_t kMapNodeBytes = 32;
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
    auto& record = touch(pid);
    record.status.percentage = percentage;
    record.isOver = percentage >= kFinished;
    makeRoom(pid);
    return record.status;
}

const encodingStatus& EncodingTable::setPath(std::int32_t pid, std::string_view path)
{
    auto& status = touch(pid).status;
    bytesTaken -= bytesOf(status);
    status.path = path;
    status.name = displayName(path);
    status.nameText = status.name.c_str();
    bytesTaken += bytesOf(status);
    makeRoom(pid);
    return status;
}

const encodingStatus& EncodingTable::setType(std::int32_t pid, std::string_view type)
{
    auto& status = touch(pid).status;
    bytesTaken -= bytesOf(status);
    status.encType = type;
    bytesTaken += bytesOf(status);
    makeRoom(pid);
    return status;
}

const encodingStatus& EncodingTable::addError(std::int32_t pid)
{
    auto& record = touch(pid);
    --record.status.errorCount;
    record.isOver = true;
    makeRoom(pid);
    return record.status;
}

const encodingStatus* EncodingTable::find(std::int32_t pid) const
{
    const auto found = records.find(pid);
    return found == records.end() ? nullptr : &found->second.status;
}

EncodingTable::Record& EncodingTable::touch(std::int32_t pid)
{
    const auto [found, isNew] = records.try_emplace(pid);
    auto& record = found->second;
    record.heard = ++changes;
    if (isNew) {
        record.status.pid = pid;
        bytesTaken += bytesOf(record.status);
    }
    return record;
}

bool EncodingTable::isTooMuch(std::size_t tenthsOfBound) const
{
    return records.size() > 1 && (bytesTaken > mostBytes * tenthsOfBound / 10 ||
                                  records.size() > kMostRecords * tenthsOfBound / 10);
}

// A tenth at once, so that looking for the oldest ones does not cost anything that counts.
void EncodingTable::makeRoom(std::int32_t kept)
{
    if (!isTooMuch(10))
        return;
    auto oldest = fromOldest();
    // A few of those that still run are passed over at first.
    int passedOver = 0;
    for (auto& record : oldest) {
        if (!isTooMuch(9))
            return;
        if (record->first == kept)
            continue;
        if (!record->second.isOver && passedOver < kMostProcessesAsked && isRunning(record->first))
            ++passedOver;
        else
            forget(std::exchange(record, records.end()));
    }
    for (const auto record : oldest)
        if (isTooMuch(9) && record != records.end() && record->first != kept)
            forget(record);
}

std::vector<EncodingTable::Records::iterator> EncodingTable::fromOldest()
{
    std::vector<Records::iterator> all;
    all.reserve(records.size());
    for (auto record = records.begin(); record != records.end(); ++record)
        all.push_back(record);
    std::ranges::sort(
        all, {}, [](const auto& record) { return std::pair(!record->second.isOver, record->second.heard); });
    return all;
}

void EncodingTable::forget(Records::iterator record)
{
    bytesTaken -= bytesOf(record->second.status);
    records.erase(record);
}

std::size_t EncodingTable::bytesOf(const encodingStatus& status)
{
    return sizeof(Record) + kMapNodeBytes + kAllocatorBytes + heapBytes(status.encType) +
           heapBytes(status.path) + heapBytes(status.name);
}

} // namespace Kest::Settings
