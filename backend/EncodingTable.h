// What encoders have reported, by process id.
#pragma once

#include "backend/EncodingStatus.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <string_view>
#include <vector>

namespace Kest::Settings {

/// The whole history of a run. Only a flood meets the bound on its memory: then a tenth is forgotten, first
/// the records of encodings that have finished or failed, then those whose process has gone, then any; of
/// each kind those that were last heard of longest ago. A record that is returned is valid until the next
/// change.
class EncodingTable {
public:
    /// Some 10,000 encodings as they are. With a menu of them the agent stays within 8 MB of what it was.
    static constexpr std::size_t kMostBytes = 4'000'000;
    static constexpr std::size_t kMostRecords = 10'000; // as many as the menu has entries

    explicit EncodingTable(std::size_t mostBytesKept = kMostBytes) : mostBytes(mostBytesKept) {}
    EncodingTable(const EncodingTable&) = delete;
    EncodingTable& operator=(const EncodingTable&) = delete;

    // Each makes the record when it is missing.
    const encodingStatus& setPercentage(std::int32_t pid, std::int32_t percentage);
    const encodingStatus& setPath(std::int32_t pid, std::string_view path);
    const encodingStatus& setType(std::int32_t pid, std::string_view type);
    const encodingStatus& addError(std::int32_t pid);

    /// Null when the process is not known.
    const encodingStatus* find(std::int32_t pid) const;

    std::size_t size() const { return records.size(); }
    /// Memory taken by all records; more than the bound only when there is a single one.
    std::size_t bytes() const { return bytesTaken; }

private:
    struct Record {
        encodingStatus status;
        std::uint64_t heard = 0; // the number of its last change
        bool isOver = false;
    };
    using Records = std::map<std::int32_t, Record>;

    Record& touch(std::int32_t pid);
    bool isTooMuch(std::size_t tenthsOfBound) const;
    void makeRoom(std::int32_t kept);
    std::vector<Records::iterator> fromOldest();
    void forget(Records::iterator record);
    static std::size_t bytesOf(const encodingStatus& status);

    const std::size_t mostBytes;
    std::size_t bytesTaken = 0;
    std::uint64_t changes = 0;
    Records records;
};

} // namespace Kest::Settings
