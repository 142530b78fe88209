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

/// Contains one record for each process of a run. A process id that is used again has several records: lines
/// change the newest one. When one of the two limits is exceeded, records are evicted down to nine tenths of
/// it: first encodings that have finished, failed or have a newer record, then any, each with the oldest last
/// report first. A returned record is valid until the next change. Not synchronised.
class EncodingTable {
public:
    static constexpr std::size_t kMaxRecords = 10'000;
    /// Maximum of the summed sizes of paths, names and types. A single record may exceed it.
    static constexpr std::size_t kMaxTextBytes = 4'000'000;
    /// Maximum number of checks whether a process has the pipe open.
    static constexpr int kMaxPipeChecks = 64;

    explicit EncodingTable(std::size_t maxBytesOfText = kMaxTextBytes) : maxTextBytes(maxBytesOfText) {}
    EncodingTable(const EncodingTable&) = delete;
    EncodingTable& operator=(const EncodingTable&) = delete;

    /// Assigns the next lines of a process id to the process that has it now: adds a record if the newest one
    /// belongs to another process. Without a process (start time 0) the lines belong to the newest record of
    /// the id, if there is one. Returns whether to check that the process has the pipe open, and counts that
    /// check.
    bool identify(const ProcessIdentity& process);
    /// Records that the newest process of the id had the pipe open.
    void setWroteToPipe(std::int32_t pid);

    /// Changes the newest record of the line's process id, or adds one. Returns null and changes nothing if
    /// that encoding has finished and its process has ended: the line is of another process. An over-long
    /// path removes the previous one.
    const encodingStatus* take(const EncodingLine& line);

    /// Returns the newest record of a process id; null if there is none.
    const encodingStatus* find(std::int32_t pid) const;
    /// Returns the record of a process; null if there is none.
    const encodingStatus* find(const ProcessIdentity& process) const;

    /// Returns copies of the records whose last report is newer than report number `since` (0: all), in the
    /// order of their first reports, and sets `since` to the newest of them. Returns at most `kMaxBatch`
    /// records with the oldest last reports: call it again until the result is empty.
    std::vector<encodingStatus> reportedSince(std::uint64_t& since) const;
    static constexpr std::size_t kMaxBatch = 250;

    /// Returns the number of evictions.
    std::uint64_t evictions() const { return evictionCount; }
    std::size_t size() const { return records.size(); }
    std::size_t textBytes() const { return bytesOfText; }

private:
    struct Record;
    using Records = std::multimap<std::int32_t, Record>; // by process id, the newest one last
    using Order = std::list<Records::iterator>;
    struct Record {
        encodingStatus status;
        std::uint64_t firstReport = 0; // number of the report; 0 before it
        std::uint64_t lastReport = 0;  // before the first report, the number of the first line
        Order::iterator position;      // in `byLastReport`
        bool isOver = false;           // finished, failed, or not the newest of its process id
        bool isClosed = false;         // finished, and its process had ended at the last identification
        int pipeChecks = 0;
    };

    Record& recordFor(const ProcessIdentity& process);
    Record& add(const ProcessIdentity& process);
    void report(Record& record, bool isOver);
    void setPath(Record& record, std::string_view path);
    void setType(Record& record, std::string_view type);
    bool exceeds(std::size_t tenths) const;
    void makeRoom(const Record& kept);
    void evict(Records::iterator record);

    const std::size_t maxTextBytes;
    std::size_t bytesOfText = 0;
    std::uint64_t reports = 0;
    std::uint64_t evictionCount = 0;
    Records records;
    Order byLastReport; // the oldest last report first
};

} // namespace Kest::Settings
