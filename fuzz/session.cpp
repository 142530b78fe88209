// A session into which another process has written any bytes: what is read or written stays within its
// fields.
#include "backend/SessionMonitor.h"
#include "fuzz/Input.h"
#include "lipc/Numeric.h"
#include "lipc/SessionBuffer.h"
#include "lipc/SettingsRecord.h"
#include "tables/Settings.h"

#include <cstring>
#include <vector>

namespace {

using namespace Kest::Settings;
using Kest::Fuzz::require;
using LIPC::SessionBuffer;

constexpr std::size_t kBytes = SessionBuffer::kSegmentBytes;

// All zeros between two inputs. Exactly as long as the smallest segment, so that a sanitizer sees what leaves
// it.
char* const image = static_cast<char*>(std::calloc(kBytes, 1));
SessionBuffer& session = *reinterpret_cast<SessionBuffer*>(image);
std::vector<std::pair<std::size_t, std::size_t>> written; // offset and size

void write(std::size_t offset, const std::string& text)
{
    written.emplace_back(offset, text.copy(image + offset, kBytes - offset));
}

// Slots at both ends and in the middle; fields from their start or from any byte.
void poke(Kest::Fuzz::Input& input)
{
    const std::size_t slots[] = {0, 1, 2, 3, 500, 1021, 1022, 1023};
    const std::size_t fields[] = {0, 64, 68, 72, 136, 144, 300, 656, 656 + 128, 656 + 264, 3370};
    constexpr std::size_t kRecord = sizeof(LIPC::ClientEntry);
    const auto at = offsetof(SessionBuffer, clients) + kRecord * slots[input.below(8)];
    const int kind = input.below(6);
    if (kind == 0)
        write(at, "KestSettings");
    else if (kind == 1)
        write(at + 68, "SUBK");
    else if (kind == 2)
        write(at + 72, std::string(64, static_cast<char>(input.byte())));
    else if (kind == 3)
        write(at + fields[input.below(11)], input.text(static_cast<std::size_t>(input.below(16))));
    else if (kind == 4)
        write(at + static_cast<std::uint32_t>(input.number()) % kRecord, input.text(4));
    else
        write(static_cast<std::uint32_t>(input.number()) % kBytes, input.text(8));
}

void readBuses()
{
    const auto scan = scanBuses(session, {});
    const auto again = scanBuses(session, scan.table);
    require(scan.table == again.table && (scan.changed || !again.changed));
    require(scan.changed == !scan.table.empty());
    for (const auto& [name, id] : scan.table)
        require(name.size() <= 64 && id.size() <= 64);
}

void writeAsAgent(LIPC::ClientEntry& own, Kest::Fuzz::Input& input)
{
    LIPC::round(LIPC::loadShared(own.params[LIPC::kStatusNumberParameter]));
    const auto name = input.text(200) + std::string(static_cast<std::size_t>(input.byte()), 'x');
    auto& field = own.strings[setting("Facility").number];
    field.put(name.c_str(), static_cast<int>(name.size()));
    require(name.starts_with(field.text()) && field.text().empty() == (name[0] == '\0'));
    require(LIPC::ClientEntry(own).labelText().size() <= 64);
    std::memset(static_cast<void*>(&own), 0, sizeof own);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    Kest::Fuzz::Input input(data, size);
    for (int pokes = input.below(12); pokes > 0; --pokes)
        poke(input);

    readBuses();
    if (auto* own = session.getClientEntry(LIPC::kSettingsClientName))
        writeAsAgent(*own, input);
    session.defaultBus = LIPC::ClientID(input.text(70).c_str());
    require(image[kBytes - 1] == '\0');

    session.defaultBus = LIPC::ClientID("");
    for (const auto& [offset, count] : written)
        std::memset(image + offset, 0, count);
    written.clear();
    return 0;
}
