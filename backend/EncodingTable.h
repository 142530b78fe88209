// What encoders have reported, by process.
#pragma once

#include "backend/EncodingStatus.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <string_view>
#include <vector>

namespace Kest::Settings {

/// The whole history of a run, a record for each process. A number that is given again has several records:
/// lines change the newest one, the others are history. Only a flood reaches the bound on the memory: then a
/// tenth is removed, first the records of encodings that have finished or failed or have a newer record, then
/// those whose process has ended, then any; the oldest first in each group. A record that is returned is
/// valid until the next change.
class EncodingTable {
public:
    /// Some 10,000 encodings. With a menu of them the agent uses at most 8 MB more than without.
    static constexpr std::size_t kMostBytes = 4'000'000;
    static constexpr std::size_t kMostRecords = 10'000;

    explicit EncodingTable(std::size_t mostBytesKept = kMostBytes) : mostBytes(mostBytesKept) {}
    EncodingTable(const EncodingTable&) = delete;
    EncodingTable& operator=(const EncodingTable&) = delete;

    /// A process that was never seen with the pipe open is not checked more often than this.
    static constexpr int kMaxPipeChecks = 64;

    /// Assigns the next lines of the number to the process that has it now: adds a record when the newest one
    /// of the number is another process's. Without a process (start time 0) they are the last lines of the
    /// one that had the number, if there is a record of it. Returns whether to check if the process has the
    /// pipe open, and counts that check.
    bool identify(const ProcessIdentity& process);
    /// Notes that the number's newest process had the pipe open.
    void setWroteToPipe(std::int32_t pid);

    // Each changes the newest record, and makes it when there is none. The result is null, and nothing
    // changes, when that encoding has finished and its process has ended: the line is somebody else's.
    const encodingStatus* setPercentage(std::int32_t pid, std::int32_t percentage);
    /// An empty path removes path and name.
    const encodingStatus* setPath(std::int32_t pid, std::string_view path);
    const encodingStatus* setType(std::int32_t pid, std::string_view type);
    const encodingStatus* addError(std::int32_t pid);

    /// The newest record of a number; null when there is none.
    const encodingStatus* find(std::int32_t pid) const;
    /// The record of a process; null when there is none.
    const encodingStatus* find(const ProcessIdentity& process) const;

    std::size_t size() const { return records.size(); }
    /// Memory taken by all records; more than the bound only when there is a single one.
    std::size_t bytes() const { return bytesTaken; }

private:
    struct Record {
        encodingStatus status;
        std::uint64_t heard = 0; // the number of its last change
        bool isOver = false;     // finished, failed, or not the newest of its number
        bool isClosed = false;   // had finished, and its process had ended, when it was last identified
        int pipeChecks = 0;
    };
    using Records = std::multimap<std::int32_t, Record>; // by number, the newest one last

    Record& recordFor(const ProcessIdentity& process);
    Record& add(const ProcessIdentity& process);
    Record* touch(std::int32_t pid);
    bool isTooMuch(std::size_t tenthsOfBound) const;
    void makeRoom(const Record& kept);
    std::vector<Records::iterator> fromOldest(const Record& kept);
    void forget(Records::iterator record);
    static std::size_t bytesOf(const encodingStatus& status);

    const std::size_t mostBytes;
    std::size_t bytesTaken = 0;
    std::uint64_t changes = 0;
    Records records;
};

} // namespace Kest::Settings
