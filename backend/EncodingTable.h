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

/// Contains one record for each process that has written lines. If the system reuses a process id, the id has
/// several records; the newest one belongs to the last process. Not synchronised.
/// A report is a percentage or an error. The activity of a record is its last report, or its creation if it
/// has no report. If the number of records or the total size of their texts exceeds its maximum, records are
/// evicted until both are at most nine tenths of their maximum. First evicts the records of finished or
/// failed encodings, and the records that are not the newest of their process id. Then evicts other records.
/// Both times, begins with the record that has the oldest activity.
class EncodingTable {
public:
    static constexpr std::size_t kMaxRecords = 10'000;
    /// Maximum of the total size of all paths, names and types, in bytes. A single record may exceed it.
    static constexpr std::size_t kMaxTextBytes = 4'000'000;
    /// Maximum number of checks per record whether its process has the encoders' pipe open, see `setWriter`.
    static constexpr int kMaxPipeChecks = 64;

    explicit EncodingTable(std::size_t maxBytesOfText = kMaxTextBytes) : maxTextBytes(maxBytesOfText) {}
    EncodingTable(const EncodingTable&) = delete;
    EncodingTable& operator=(const EncodingTable&) = delete;

    /// Sets the process that writes the lines of the id `process.pid` from now on. Call this function before
    /// `take`. Adds a record for `process` if the newest record of the id belongs to another process or does
    /// not exist. If `process.startTime` is 0, adds a record only if the id has none. Returns whether the
    /// caller must check if the process has the encoders' pipe open, and counts this check. If the pipe is
    /// open, call `setHadPipeOpen`.
    bool setWriter(const ProcessIdentity& process);
    /// Sets `hadPipeOpen` in the newest record of the process id. Does nothing if there is no record.
    void setHadPipeOpen(std::int32_t pid);

    /// Applies a line to the newest record of its process id, and adds a record if there is none. Returns the
    /// record, which is valid until the next change of the table. An `OverlongValue` with `isPath` removes
    /// the path of the record; one without it changes nothing.
    /// Returns null and changes nothing if the encoding of the record has finished and its process had ended
    /// at the last `setWriter`: another process must have written the line.
    const encodingStatus* take(const EncodingLine& line);

    /// Returns the newest record of a process id, valid until the next change of the table; null if there is
    /// none.
    const encodingStatus* find(std::int32_t pid) const;
    /// Returns the record of exactly this process, valid until the next change of the table; null if there is
    /// none.
    const encodingStatus* find(const ProcessIdentity& process) const;

    /// Returns copies of the records that have new reports since the previous call. `since` identifies that
    /// call: pass 0 in the first call; each call sets it for the next one. Returns at most `kMaxBatch`
    /// records; if there are more, those whose last reports are oldest. The copies are in the order of their
    /// first reports. To get all records, call this function until the result is empty.
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
