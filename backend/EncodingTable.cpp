#include "backend/EncodingTable.h"

#include <algorithm>
#include <iterator>
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

// The last one of a number; the end when there is none.
template <typename Records>
auto newestOf(Records& records, std::int32_t pid)
{
    const auto behind = records.upper_bound(pid);
    const bool isKnown = behind != records.begin() && std::prev(behind)->first == pid;
    return isKnown ? std::prev(behind) : records.end();
}

bool isRunning(const ProcessIdentity& process)
{
    return process.startTime != 0 && identifyProcess(process.pid) == process;
}

} // namespace

bool EncodingTable::identify(const ProcessIdentity& process)
{
    auto& record = recordFor(process);
    return process.startTime != 0 && !record.status.wroteToPipe && record.pipeChecks++ < kMaxPipeChecks;
}

EncodingTable::Record& EncodingTable::recordFor(const ProcessIdentity& process)
{
    const auto found = newestOf(records, process.pid);
    if (found == records.end())
        return add(process);
    auto& record = found->second;
    const auto& known = record.status.process;
    const bool hasEnded = known.startTime != 0 && known != process;
    record.isClosed = hasEnded && record.status.percentage >= kFinished;
    if (process.startTime == 0 || known == process)
        return record;
    record.isOver = true;
    return add(process);
}

void EncodingTable::setWroteToPipe(std::int32_t pid)
{
    if (const auto found = newestOf(records, pid); found != records.end())
        found->second.status.wroteToPipe = true;
}

const encodingStatus* EncodingTable::setPercentage(std::int32_t pid, std::int32_t percentage)
{
    auto* record = touch(pid);
    if (record == nullptr)
        return nullptr;
    record->status.percentage = percentage;
    record->isOver = percentage >= kFinished;
    return &record->status;
}

const encodingStatus* EncodingTable::setPath(std::int32_t pid, std::string_view path)
{
    auto* record = touch(pid);
    if (record == nullptr)
        return nullptr;
    auto& status = record->status;
    bytesTaken -= bytesOf(status);
    status.path = path;
    status.name = displayName(path);
    status.nameText = path.empty() ? nullptr : status.name.c_str();
    bytesTaken += bytesOf(status);
    makeRoom(*record);
    return &status;
}

const encodingStatus* EncodingTable::setType(std::int32_t pid, std::string_view type)
{
    auto* record = touch(pid);
    if (record == nullptr)
        return nullptr;
    bytesTaken -= bytesOf(record->status);
    record->status.encType = type;
    bytesTaken += bytesOf(record->status);
    makeRoom(*record);
    return &record->status;
}

const encodingStatus* EncodingTable::addError(std::int32_t pid)
{
    auto* record = touch(pid);
    if (record == nullptr)
        return nullptr;
    --record->status.errorCount;
    record->isOver = true;
    return &record->status;
}

const encodingStatus* EncodingTable::find(std::int32_t pid) const
{
    const auto found = newestOf(records, pid);
    return found == records.end() ? nullptr : &found->second.status;
}

const encodingStatus* EncodingTable::find(const ProcessIdentity& process) const
{
    const auto [begin, end] = records.equal_range(process.pid);
    const auto found =
        std::find_if(begin, end, [&](const auto& record) { return record.second.status.process == process; });
    return found == end ? nullptr : &found->second.status;
}

EncodingTable::Record& EncodingTable::add(const ProcessIdentity& process)
{
    auto& record = records.emplace(process.pid, Record())->second;
    record.heard = ++changes;
    record.status.pid = process.pid;
    record.status.process = process;
    bytesTaken += bytesOf(record.status);
    makeRoom(record);
    return record;
}

EncodingTable::Record* EncodingTable::touch(std::int32_t pid)
{
    const auto found = newestOf(records, pid);
    if (found == records.end())
        return &add({pid, 0});
    auto& record = found->second;
    if (record.isClosed)
        return nullptr;
    record.heard = ++changes;
    return &record;
}

bool EncodingTable::isTooMuch(std::size_t tenthsOfBound) const
{
    return records.size() > 1 && (bytesTaken > mostBytes * tenthsOfBound / 10 ||
                                  records.size() > kMostRecords * tenthsOfBound / 10);
}

// A tenth at once, so that sorting costs little for each line.
void EncodingTable::makeRoom(const Record& kept)
{
    if (!isTooMuch(10))
        return;
    auto oldest = fromOldest(kept);
    // A few of those that still run are passed over at first.
    int passedOver = 0;
    for (auto& record : oldest) {
        if (!isTooMuch(9))
            return;
        if (!record->second.isOver && passedOver < kMostProcessesAsked &&
            isRunning(record->second.status.process))
            ++passedOver;
        else
            forget(std::exchange(record, records.end()));
    }
    for (const auto record : oldest)
        if (isTooMuch(9) && record != records.end())
            forget(record);
}

std::vector<EncodingTable::Records::iterator> EncodingTable::fromOldest(const Record& kept)
{
    std::vector<Records::iterator> all;
    all.reserve(records.size());
    for (auto record = records.begin(); record != records.end(); ++record)
        if (&record->second != &kept)
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
    return sizeof(Records::value_type) + kMapNodeBytes + kAllocatorBytes + heapBytes(status.encType) +
           heapBytes(status.path) + heapBytes(status.name);
}

} // namespace Kest::Settings
