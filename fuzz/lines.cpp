// The encoders' lines in pieces of any size. The table that comes of them equals that of a reader which scans
// each line with the four patterns by sscanf; a small table keeps its bound.
#include "backend/EncodingLine.h"
#include "backend/EncodingTable.h"
#include "fuzz/Input.h"
#include "text/LineSplitter.h"

#include <climits>
#include <cstring>
#include <tuple>

namespace {

using namespace Kest::Settings;
using Kest::Fuzz::require;
using Kest::Text::LineSplitter;

/// Changes a record as sscanf reads a line. A number that does not fit 32 bits is none.
void scanLine(const std::string& line, std::map<int, encodingStatus>& table)
{
    static char text[LineSplitter::kMaxLineBytes + 1];
    long pid = 0;
    long percentage = 0;
    if (std::sscanf(line.c_str(), "pid: %ld", &pid) != 1 || pid < INT_MIN || pid > INT_MAX)
        return;
    auto& record = table[static_cast<int>(pid)];
    if (std::sscanf(line.c_str(), "pid: %*d , P: %ld", &percentage) == 1 && percentage >= 0 &&
        percentage <= INT_MAX) {
        record.percentage = static_cast<int>(percentage);
    } else if (std::sscanf(line.c_str(), "pid: %*d , path: %[^\n]", text) == 1) {
        record.path = std::strlen(text) > 1023 ? "" : text;
        record.name = record.path.substr(record.path.rfind('/') + 1);
        record.name = record.name.substr(0, record.name.rfind('.'));
    } else if (std::sscanf(line.c_str(), "pid: %*d , enc_type: %s", text) == 1) {
        if (std::strlen(text) <= 1023)
            record.encType = text;
    } else {
        --record.errorCount;
    }
}

// Long lines out of short inputs: 0xFF, a character and a count stand for as many of it; counts from 0xF0 on
// for 256 times as many as they are above 0xEF.
std::string unfolded(Kest::Fuzz::Input& input)
{
    std::string bytes;
    while (!input.isEmpty() && bytes.size() < 4500) {
        const auto byte = input.byte();
        const auto repeated = byte == 0xFF ? input.byte() : byte;
        const std::size_t count = byte == 0xFF ? input.byte() : 1;
        bytes.append(count < 0xF0 ? count : 256 * (count - 0xEF), static_cast<char>(repeated));
    }
    return bytes;
}

bool isAs(const encodingStatus* found, const encodingStatus& wanted)
{
    const auto fields = [](const encodingStatus& is) {
        return std::tie(is.percentage, is.path, is.name, is.encType, is.errorCount);
    };
    return found != nullptr && fields(*found) == fields(wanted) &&
           found->nameText == (found->path.empty() ? nullptr : found->name.c_str());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    constexpr std::size_t kSmall = 500;
    Kest::Fuzz::Input input(data, size);
    auto cuts = static_cast<std::uint32_t>(input.number());
    const auto bytes = unfolded(input);
    const bool isSmall = cuts % 4 == 0; // without sscanf, which takes most of the time
    EncodingTable table(isSmall ? kSmall : EncodingTable::kMaxTextBytes);
    LineSplitter splitter;
    std::map<int, encodingStatus> wanted;
    const auto take = [&](std::string_view line) {
        const auto parsed = parseEncodingLine(line);
        const auto* changed = parsed ? table.take(*parsed) : nullptr;
        require(!parsed || (changed != nullptr && changed == table.find(parsed->pid)));
        require(!isSmall || table.textBytes() <= kSmall || table.size() == 1);
        if (!isSmall)
            scanLine(std::string(line), wanted);
    };
    for (std::size_t at = 0, pieces = 0, count = 0; at < bytes.size(); at += count, ++pieces) {
        cuts = cuts * 1664525 + 1013904223;
        count = 1 + (cuts >> 16) % ((cuts & 0x100U) != 0 || pieces > 32 ? 1024 : 16);
        splitter.feed(std::string_view(bytes).substr(at, count), take, [](std::string_view) {});
    }
    require(isSmall || table.size() == wanted.size());
    for (const auto& [pid, status] : wanted)
        require(isAs(table.find(pid), status));
    return 0;
}
