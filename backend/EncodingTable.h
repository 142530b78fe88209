// The table of encodings, by process.
#pragma once

#include "backend/EncodingLine.h"
#include "backend/EncodingStatus.h"

#include <cstddef>
#include <cstdint>
#include <list>
#include <map>
#include <string_view>
#include <vector>

namespace Kest::Settings {

/// Contains one record for each process that has written lines. If a process id is used again, its newest
/// record belongs to the last process. Not synchronised.
/// If the number of records or the size of their texts exceeds its limit, records are evicted until both are
/// at most nine tenths of their limits. Records of finished and failed encodings, and records that are not
/// the newest of their process id, are evicted before all others. Within both groups, the record with the
/// oldest activity is evicted first. The activity is the last report, or the creation of a record without
/// reports.
class EncodingTable {
public:
    static constexpr std::size_t kMaxRecords = 10'000;
    /// Maximum of the total size of all paths, names and types, in bytes. A single record may exceed it.
    static constexpr std::size_t kMaxTextBytes = 4'000'000;
    /// Maximum number of checks for each record. A check finds out whether the process has the pipe open.
    static constexpr int kMaxPipeChecks = 64;

    explicit EncodingTable(std::size_t maxBytesOfText = kMaxTextBytes) : maxTextBytes(maxBytesOfText) {}
    EncodingTable(const EncodingTable&) = delete;
    EncodingTable& operator=(const EncodingTable&) = delete;

    /// Sets the process that writes the next lines of the id `process.pid`. Call this function before `take`.
    /// Adds a record for `process` if the newest record of the id belongs to another process or does not
    /// exist. Exception: if `process.startTime` is 0, the newest record of the id is used even if it belongs
    /// to another process. Returns whether the caller must check whether the process has the pipe open, and
    /// counts this check.
    bool setWriter(const ProcessIdentity& process);
    /// Sets `hadPipeOpen` in the newest record of the process id. Does nothing if there is no record.
    void setHadPipeOpen(std::int32_t pid);

    /// Applies a line to the newest record of its process id, and adds a record if there is none. Returns the
    /// record, which is valid until the next change of the table. An over-long path removes the path of the
    /// record; an over-long type changes nothing.
    /// Exception: if the record's encoding has finished and its process had ended at the last `setWriter`,
    /// another process must have written the line. Then changes nothing and returns null.
    const encodingStatus* take(const EncodingLine& line);

    /// Returns the newest record of a process id, valid until the next change; null if there is none.
    const encodingStatus* find(std::int32_t pid) const;
    /// Returns the record of exactly this process, valid until the next change; null if there is none.
    const encodingStatus* find(const ProcessIdentity& process) const;

    /// Returns copies of the records whose last report is newer than `since`, and sets `since` for the next
    /// call. Pass 0 in the first call. Returns at most `kMaxBatch` records; if there are more, those whose
    /// last reports are oldest. The copies are in the order of their first reports. To get all records, call
    /// this function until the result is empty.
    std::vector<encodingStatus> reportedSince(std::uint64_t& since) const;
    static constexpr std::size_t kMaxBatch = 250;

    /// Returns how many times records were evicted, usually many records at a time.
    std::uint64_t evictionRuns() const { return evictionCount; }
    std::size_t size() const { return records.size(); }
    std::size_t textBytes() const { return bytesOfText; }

private:
    struct Record;
    using Records = std::multimap<std::int32_t, Record>; // by process id, the newest one last
    using Order = std::list<Records::iterator>;
    struct Record {
        encodingStatus status;
        std::uint64_t firstReport = 0;  // `sequence` at the first report; 0 before
        std::uint64_t lastActivity = 0; // `sequence` at the last report; at the creation if there was none
        Order::iterator position;       // in `byLastActivity`
        bool isEvictedFirst = false;    // finished, failed, or not the newest of its process id
        bool isClosed = false;          // finished, and its process had ended at the last `setWriter`
        int pipeChecks = 0;
    };

    Record& recordFor(const ProcessIdentity& process);
    Record& add(const ProcessIdentity& process);
    void report(Record& record, bool isEvictedFirst);
    void setPath(Record& record, std::string_view path);
    void setType(Record& record, std::string_view type);
    bool exceeds(std::size_t tenths) const;
    void makeRoom(const Record& kept);
    void evict(Records::iterator record);

    const std::size_t maxTextBytes;
    std::size_t bytesOfText = 0;
    std::uint64_t sequence = 0; // number of reports and created records
    std::uint64_t evictionCount = 0;
    Records records;
    Order byLastActivity; // sorted by `lastActivity`
};

} // namespace Kest::Settings
