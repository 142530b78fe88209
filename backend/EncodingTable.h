// What encoders have reported, by process id.
#pragma once

#include "backend/EncodingStatus.h"

#include <cstddef>
#include <list>
#include <map>
#include <string_view>

namespace Kest::Settings {

/// The whole history of a run. Only a flood meets the bound on its memory: then records are forgotten, first
/// those of encodings that have finished or failed, then those whose process has gone, then any; of each kind
/// the one that was last heard of longest ago. A record that is returned is valid until the next change.
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
    using Order = std::list<std::int32_t>; // process ids, the one heard of longest ago in front

    struct Record {
        encodingStatus status;
        bool isOver = false;
        Order::iterator place; // in `over` or `running`
    };

    Record& recordOf(std::int32_t pid);
    void placeLast(Record& record, bool isOver);
    void makeRoom(std::int32_t kept);
    std::int32_t oldest(std::int32_t kept);
    void forget(std::int32_t pid);
    static std::size_t bytesOf(const encodingStatus& status);

    const std::size_t mostBytes;
    std::size_t bytesTaken = 0;
    std::map<std::int32_t, Record> records;
    Order over;
    Order running;
};

} // namespace Kest::Settings
