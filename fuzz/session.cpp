// A session that another process has written anything into: what is read stays within its fields, and what
// the agent writes changes nothing but its own record and the default bus.
#include "backend/SessionMonitor.h"
#include "fuzz/Input.h"
#include "lipc/Numeric.h"
#include "lipc/SessionBuffer.h"
#include "lipc/SettingsRecord.h"
#include "tables/Settings.h"

#include <algorithm>
#include <cstring>
#include <vector>

namespace {

using namespace Kest::Settings;
using Kest::Fuzz::require;
using LIPC::SessionBuffer;

constexpr std::size_t kRecord = sizeof(LIPC::ClientEntry);
constexpr std::size_t kDefaultBus = offsetof(SessionBuffer, defaultBus);

std::size_t slot(std::size_t index) { return 1120 + kRecord * index; }

/// One image for all inputs: all zeros, but for what is written and made undone again. It is exactly as long
/// as the smallest segment, so that a sanitizer sees what leaves it.
class Image {
public:
    Image() : bytes(new unsigned char[SessionBuffer::kSegmentBytes]()) {}
    SessionBuffer& session() { return *reinterpret_cast<SessionBuffer*>(bytes); }

    void write(std::size_t offset, const std::string& text)
    {
        const auto count = std::min(text.size(), SessionBuffer::kSegmentBytes - offset);
        std::memcpy(bytes + offset, text.data(), count);
        written.emplace_back(offset, count);
    }
    void undo()
    {
        for (const auto& [offset, count] : written)
            std::memset(bytes + offset, 0, count);
        written.clear();
    }
    std::size_t offsetOf(const void* place) const
    {
        return static_cast<std::size_t>(static_cast<const unsigned char*>(place) - bytes);
    }
    std::string copy(std::size_t offset, std::size_t count) const
    {
        count = std::min(count, SessionBuffer::kSegmentBytes - offset);
        return {reinterpret_cast<const char*>(bytes) + offset, count};
    }

private:
    unsigned char* bytes;
    std::vector<std::pair<std::size_t, std::size_t>> written;
};

// Slots at both ends and in the middle; fields from their start or from any byte.
void poke(Image& image, Kest::Fuzz::Input& input)
{
    const std::size_t indices[] = {0, 1, 2, 3, 500, 1021, 1022, 1023};
    const std::size_t fields[] = {0, 64, 68, 72, 136, 144, 300, 656, 656 + 128, 656 + 264, 3370};
    const auto at = slot(indices[input.below(8)]);
    const int kind = input.below(6);
    if (kind == 0)
        image.write(at, "KestSettings");
    else if (kind == 1)
        image.write(at + 68, "SUBK");
    else if (kind == 2)
        image.write(at + 72, std::string(64, static_cast<char>(input.byte())));
    else if (kind == 3)
        image.write(at + fields[input.below(11)], input.text(static_cast<std::size_t>(input.below(16))));
    else if (kind == 4)
        image.write(at + static_cast<std::uint32_t>(input.number()) % kRecord, input.text(4));
    else
        image.write(static_cast<std::uint32_t>(input.number()) % SessionBuffer::kSegmentBytes, input.text(8));
}

void readBuses(Image& image)
{
    const auto scan = scanBuses(image.session(), {});
    const auto again = scanBuses(image.session(), scan.table);
    require(scan.table == again.table && (scan.changed || !again.changed), "the same is read twice");
    require(scan.changed == !scan.table.empty(), "each bus is a change");
    for (const auto& [name, id] : scan.table)
        require(name.size() <= 64 && id.size() <= 64, "texts end with their fields");
}

void writeAsAgent(Image& image, LIPC::ClientEntry& own, Kest::Fuzz::Input& input)
{
    const auto at = image.offsetOf(&own);
    require(at >= 1120 && (at - 1120) % kRecord == 0 && at < kDefaultBus - 8, "a record is a slot");
    const auto others = [&] {
        return image.copy(at - 1120, 1120) + image.copy(at + 656 + 272, 2 * kRecord - 656 - 272);
    };
    const auto before = others();
    LIPC::round(LIPC::loadShared(own.params[LIPC::eHostMessage]));
    LIPC::storeShared(own.params[setting("PhysMonConfig").number], static_cast<float>(input.number()));
    const auto name = input.text(200) + std::string(static_cast<std::size_t>(input.byte()), 'x');
    auto& field = own.strings[setting("Facility").number];
    field.put(name.c_str(), static_cast<int>(name.size()));
    require(name.starts_with(field.text()), "the facility or its beginning is published");
    require(LIPC::ClientEntry(own).labelText().size() <= 64, "a label ends with its field");
    require(before == others(), "nothing else is written");
    image.write(at, std::string(kRecord, '\0'));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static Image image;
    Kest::Fuzz::Input input(data, size);
    for (int pokes = input.below(12); pokes > 0; --pokes)
        poke(image, input);

    auto& session = image.session();
    readBuses(image);
    if (auto* own = session.getClientEntry(LIPC::kSettingsClientName))
        writeAsAgent(image, *own, input);
    session.defaultBus = LIPC::ClientID(input.text(70).c_str());
    require(image.copy(SessionBuffer::kSegmentBytes - 1, 1) == std::string(1, '\0'), "the default bus ends");
    image.write(kDefaultBus, std::string(65, '\0'));
    image.undo();
    return 0;
}
