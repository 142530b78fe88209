#include "backend/EncodingTable.h"

#include <algorithm>
#include <iterator>

namespace Kest::Settings {
namespace {

// Returns the file's name without its last extension.
std::string_view displayName(std::string_view path)
{
    const auto name = path.substr(path.rfind('/') + 1); // npos + 1 is 0
    return name.substr(0, name.rfind('.'));
}

// Returns the newest record of a process id; the end if there is none.
template <typename Records>
auto newestOf(Records& records, std::int32_t pid)
{
    const auto behind = records.upper_bound(pid);
    const bool isKnown = behind != records.begin() && std::prev(behind)->first == pid;
    return isKnown ? std::prev(behind) : records.end();
}

std::size_t textBytesOf(const encodingStatus& status)
{
    return status.encType.size() + status.path.size() + status.name.size();
}

} // namespace

bool EncodingTable::setWriter(const ProcessIdentity& process)
{
    auto& record = recordFor(process);
    return process.startTime != 0 && !record.status.hadPipeOpen && record.pipeChecks++ < kMaxPipeChecks;
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
    record.isEvictedFirst = true;
    return add(process);
}

void EncodingTable::setHadPipeOpen(std::int32_t pid)
{
    if (const auto found = newestOf(records, pid); found != records.end())
        found->second.status.hadPipeOpen = true;
}

const encodingStatus* EncodingTable::take(const EncodingLine& line)
{
    const auto found = newestOf(records, line.pid);
    auto& record = found == records.end() ? add({line.pid, 0}) : found->second;
    if (record.isClosed)
        return nullptr;
    if (const auto* progress = std::get_if<ProgressLine>(&line.content)) {
        record.status.percentage = progress->percentage;
        record.status.hasFailed = false;
        report(record, progress->percentage >= kFinished);
    } else if (std::holds_alternative<ErrorLine>(line.content)) {
        --record.status.errorCount;
        record.status.hasFailed = true;
        report(record, true);
    } else if (const auto* path = std::get_if<PathLine>(&line.content)) {
        setPath(record, path->path);
    } else if (const auto* type = std::get_if<TypeLine>(&line.content)) {
        setType(record, type->word);
    } else if (std::get<OverlongValue>(line.content).isPath) {
        setPath(record, {});
    }
    return &record.status;
}

void EncodingTable::report(Record& record, bool isEvictedFirst)
{
    record.lastActivity = ++sequence;
    if (record.firstReport == 0)
        record.firstReport = sequence;
    record.isEvictedFirst = isEvictedFirst;
    byLastActivity.splice(byLastActivity.end(), byLastActivity, record.position);
}

// Creates new strings: assignment would keep the capacity of a previous longer text.
void EncodingTable::setPath(Record& record, std::string_view path)
{
    auto& status = record.status;
    bytesOfText -= textBytesOf(status);
    status.path = std::string(path);
    status.name = std::string(displayName(path));
    status.nameText = path.empty() ? nullptr : status.name.c_str();
    bytesOfText += textBytesOf(status);
    makeRoom(record);
}

void EncodingTable::setType(Record& record, std::string_view type)
{
    bytesOfText -= textBytesOf(record.status);
    record.status.encType = std::string(type);
    bytesOfText += textBytesOf(record.status);
    makeRoom(record);
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

std::vector<encodingStatus> EncodingTable::reportedSince(std::uint64_t& since) const
{
    auto next = byLastActivity.end();
    while (next != byLastActivity.begin() && (*std::prev(next))->second.lastActivity > since)
        --next;
    std::vector<const Record*> batch;
    for (; next != byLastActivity.end() && batch.size() < kMaxBatch; ++next) {
        const auto& record = (*next)->second;
        since = record.lastActivity;
        if (record.firstReport != 0)
            batch.push_back(&record);
    }
    std::ranges::sort(batch, {}, &Record::firstReport);
    std::vector<encodingStatus> copies;
    copies.reserve(batch.size());
    for (const auto* record : batch)
        copies.push_back(record->status);
    return copies;
}

EncodingTable::Record& EncodingTable::add(const ProcessIdentity& process)
{
    const auto added = records.emplace(process.pid, Record());
    auto& record = added->second;
    record.status.pid = process.pid;
    record.status.process = process;
    record.lastActivity = ++sequence;
    record.position = byLastActivity.insert(byLastActivity.end(), added);
    makeRoom(record);
    return record;
}

bool EncodingTable::exceeds(std::size_t tenths) const
{
    return records.size() > kMaxRecords * tenths / 10 || bytesOfText > maxTextBytes * tenths / 10;
}

// Evicts a tenth at once, because the menu compares all its rows with the table after each eviction.
void EncodingTable::makeRoom(const Record& kept)
{
    if (!exceeds(10))
        return;
    ++evictionCount;
    for (const bool onlyOver : {true, false})
        for (auto next = byLastActivity.begin(); next != byLastActivity.end() && exceeds(9);) {
            const auto record = *next++;
            if (&record->second != &kept && (record->second.isEvictedFirst || !onlyOver))
                evict(record);
        }
}

void EncodingTable::evict(Records::iterator record)
{
    bytesOfText -= textBytesOf(record->second.status);
    byLastActivity.erase(record->second.position);
    records.erase(record);
}

} // namespace Kest::Settings
