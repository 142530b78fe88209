// What encoders have reported, by process.
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

/// The whole history of a run, a record for each process. A number that is given again has several records:
/// lines change the newest one, the others are history. Only a flood exceeds one of the two bounds: then
/// records are evicted down to nine tenths of them, first those of encodings that have finished or failed or
/// have a newer record, then any; in both groups the oldest last report first. A record that is
/// returned is valid until the next change. Not synchronised.
class EncodingTable {
public:
    static constexpr std::size_t kMaxRecords = 10'000;
    /// Summed sizes of paths, names and types. A single record may exceed it.
    static constexpr std::size_t kMaxTextBytes = 4'000'000;
    /// A process that was never seen with the pipe open is not checked more often than this.
    static constexpr int kMaxPipeChecks = 64;

    explicit EncodingTable(std::size_t maxBytesOfText = kMaxTextBytes) : maxTextBytes(maxBytesOfText) {}
    EncodingTable(const EncodingTable&) = delete;
    EncodingTable& operator=(const EncodingTable&) = delete;

    /// Assigns the next lines of the number to the process that has it now: adds a record when the newest one
    /// of the number is another process's. Without a process (start time 0) they are the last lines of the
    /// one that had the number, if there is a record of it. Returns whether to check if the process has the
    /// pipe open, and counts that check.
    bool identify(const ProcessIdentity& process);
    /// Notes that the number's newest process had the pipe open.
    void setWroteToPipe(std::int32_t pid);

    /// Changes the number's newest record, and makes it when there is none. Null, and nothing changes, when
    /// that encoding has finished and its process has ended: the line is somebody else's. An over-long path
    /// removes the one before it.
    const encodingStatus* take(const EncodingLine& line);

    /// The newest record of a number; null when there is none.
    const encodingStatus* find(std::int32_t pid) const;
    /// The record of a process; null when there is none.
    const encodingStatus* find(const ProcessIdentity& process) const;

    /// Returns copies of the records whose last report came after report number `since` (0: all), in the
    /// order of their first reports, and sets `since` to the last of them. Returns at most `kMaxBatch`, those
    /// with the oldest last reports: call it again until the result is empty.
    std::vector<encodingStatus> reportedSince(std::uint64_t& since) const;
    static constexpr std::size_t kMaxBatch = 250;

    /// How often records were evicted.
    std::uint64_t evictions() const { return evictionCount; }
    std::size_t size() const { return records.size(); }
    std::size_t textBytes() const { return bytesOfText; }

private:
    struct Record;
    using Records = std::multimap<std::int32_t, Record>; // by number, the newest one last
    using Order = std::list<Records::iterator>;
    struct Record {
        encodingStatus status;
        std::uint64_t firstReport = 0; // the report's number; 0 before it
        std::uint64_t lastReport = 0;  // or the number that the first line had
        Order::iterator position;      // in `byLastReport`
        bool isOver = false;           // finished, failed, or not the newest of its number
        bool isClosed = false;         // had finished, and its process had ended, when last identified
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
