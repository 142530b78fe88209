// The encoders' lines in pieces of any size. The table that comes of them equals that of a reader which scans
// each whole line with the four patterns by sscanf; a small table keeps its bound.
#include "backend/EncodingLine.h"
#include "backend/EncodingTable.h"
#include "fuzz/Input.h"
#include "text/LineSplitter.h"

#include <array>
#include <climits>
#include <cstring>

namespace {

using namespace Kest::Settings;
using Kest::Fuzz::require;
using Kest::Text::LineSplitter;

struct Feed {
    explicit Feed(std::size_t mostBytes) : table(mostBytes) {}

    void take(std::string_view line)
    {
        if (const auto parsed = parseEncodingLine(line)) {
            const auto* changed = table.take(*parsed);
            require(changed != nullptr && changed == table.find(parsed->pid) && changed->pid == parsed->pid,
                    "the changed record is kept");
        }
    }

    EncodingTable table;
    LineSplitter splitter;
};

/// A number that sscanf has a result for.
bool fits(const char* text)
{
    errno = 0;
    const long value = std::strtol(text, nullptr, 10);
    return errno == 0 && value >= INT_MIN && value <= INT_MAX;
}

/// Makes or changes the record that one line is about; nothing when the line or its value is over-long.
void scanLine(const std::string& line, std::map<int, encodingStatus>& table)
{
    static std::array<char, LineSplitter::kLongestLine + 1> text;
    int pid = 0;
    int percentage = -1;
    if (line.size() > LineSplitter::kLongestLine || std::sscanf(line.c_str(), "pid: %d", &pid) != 1 ||
        !fits(line.c_str() + 4))
        return;
    int end = 0;
    if (std::sscanf(line.c_str(), "pid: %d , P: %n%d", &pid, &end, &percentage) == 2 &&
        !fits(line.c_str() + end))
        percentage = -1;
    if (percentage >= 0)
        table[pid].percentage = percentage;
    else if (std::sscanf(line.c_str(), "pid: %d , path: %[^\n]", &pid, text.data()) == 2) {
        std::string path = text.data();
        if (path.size() > 1023)
            path.clear();
        table[pid].path = path;
        table[pid].name = path.substr(path.rfind('/') + 1);
        table[pid].name = table[pid].name.substr(0, table[pid].name.rfind('.'));
    } else if (std::sscanf(line.c_str(), "pid: %d , enc_type: %s", &pid, text.data()) == 2) {
        auto& type = table[pid].encType;
        if (std::strlen(text.data()) <= 1023)
            type = text.data();
    } else {
        --table[pid].errorCount;
    }
}

std::map<int, encodingStatus> scan(const std::string& bytes)
{
    std::map<int, encodingStatus> table;
    for (std::size_t begin = 0; begin < bytes.size();) {
        auto end = begin;
        while (end < bytes.size() && bytes[end] != '\n' && bytes[end] != '\r' && bytes[end] != '\0')
            ++end;
        if (end == bytes.size())
            break;
        scanLine(bytes.substr(begin, end - begin), table);
        begin = end + 1;
    }
    return table;
}

// Long lines out of short inputs: 0xFF, a character and a count stand for as many of it; counts from 0xF0 on
// for 256 times as many as they are above 0xEF.
std::string unfolded(Kest::Fuzz::Input& input)
{
    constexpr std::size_t kMostBytes = 4500;
    std::string bytes;
    while (!input.isEmpty() && bytes.size() < kMostBytes) {
        const auto byte = input.byte();
        if (byte != 0xFF) {
            bytes.push_back(static_cast<char>(byte));
            continue;
        }
        const auto repeated = static_cast<char>(input.byte());
        const std::size_t count = input.byte();
        bytes.append(count < 0xF0 ? count : 256 * (count - 0xEF), repeated);
    }
    return bytes;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    Kest::Fuzz::Input input(data, size);
    std::uint32_t cuts = static_cast<std::uint32_t>(input.number());
    const auto bytes = unfolded(input);

    constexpr std::size_t kSmall = 500;
    Feed whole(EncodingTable::kMaxTextBytes);
    Feed small(kSmall);
    const bool meetsBound = cuts % 4 == 0; // it takes most of the time
    int pieces = 0;
    for (std::string_view rest = bytes; !rest.empty(); ++pieces) {
        cuts = cuts * 1664525 + 1013904223;
        const std::size_t most = (cuts & 0x100U) != 0 || pieces > 32 ? 1024 : 16;
        const auto piece = rest.substr(0, 1 + (cuts >> 16) % most);
        for (auto* feed : {&whole, meetsBound ? &small : nullptr})
            if (feed != nullptr)
                feed->splitter.feed(
                    piece, [feed](std::string_view line) { feed->take(line); }, [](std::string_view) {});
        rest.remove_prefix(piece.size());
        require(small.table.textBytes() <= kSmall || small.table.size() == 1, "the bound of a table");
    }

    const auto wanted = scan(bytes);
    require(whole.table.size() == wanted.size(), "as many encodings as sscanf finds");
    for (const auto& [pid, status] : wanted) {
        const auto* found = whole.table.find(pid);
        require(found != nullptr && found->percentage == status.percentage && found->path == status.path &&
                    found->name == status.name && found->encType == status.encType &&
                    found->errorCount == status.errorCount,
                "each is as sscanf finds it");
        require(found->nameText == (found->path.empty() ? nullptr : found->name.c_str()),
                "the text of a name");
    }
    return 0;
}
